# armhf, 32 bits (long and size_t are 32 bits wide):
# cmake -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/arm-linux-gnueabihf.cmake
# (packages: g++-arm-linux-gnueabihf qtbase5-dev:armhf qemu-user;
# `make test-cross CROSS=armhf`).
set(LCD_CROSS_TRIPLET arm-linux-gnueabihf)
set(LCD_CROSS_PROCESSOR arm)
set(LCD_CROSS_QEMU qemu-arm)
include(${CMAKE_CURRENT_LIST_DIR}/debian-multiarch.cmake)
