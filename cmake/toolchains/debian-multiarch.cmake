# Shared by the toolchain files beside it: a target of Debian's multi-arch
# packages (the cross compiler g++-<triplet>, Qt as qtbase5-dev:<arch> in
# /usr/lib/<triplet>), the build machine's own moc and rcc (Debian installs
# those for the build machine), and the tests run under qemu-user. The
# including file sets LCD_CROSS_TRIPLET, LCD_CROSS_PROCESSOR and LCD_CROSS_QEMU.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${LCD_CROSS_PROCESSOR})
set(CMAKE_C_COMPILER ${LCD_CROSS_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${LCD_CROSS_TRIPLET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${LCD_CROSS_TRIPLET})

# Libraries and CMake packages of the target only; programs of the build machine.
set(CMAKE_FIND_ROOT_PATH /usr/${LCD_CROSS_TRIPLET} /)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# ctest runs every test executable through the emulator; the target's dynamic
# loader and libraries are the multi-arch ones under / (libc6:<arch>).
set(CMAKE_CROSSCOMPILING_EMULATOR ${LCD_CROSS_QEMU} -L /)
