# arm64: cmake -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/aarch64-linux-gnu.cmake
# (packages: g++-aarch64-linux-gnu qtbase5-dev:arm64 qemu-user; `make test-cross`).
set(LCD_CROSS_TRIPLET aarch64-linux-gnu)
set(LCD_CROSS_PROCESSOR aarch64)
set(LCD_CROSS_QEMU qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/debian-multiarch.cmake)
