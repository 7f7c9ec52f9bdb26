# Install rules: the plug-in, the public headers, lcdcfg, the sample
# configuration, a CMake package (find_package(LcdConfigModel) gives
# LcdConfigModel::plugin) and a pkg-config file (lcdconfigmodel.pc).
# Every installed path is relative to the prefix, so an installed tree can be
# moved as a whole.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# The HDR component reads ../share/config/func/hdr/ from the host's working
# directory. With the sample at <prefix>/share/config, a host that runs from
# <prefix>/bin (as on the device, where the prefix is the application's own
# directory) finds it without further setup. Installing into a shared prefix
# such as /usr, set this to share/lcdconfigmodel/config and give the host a
# working directory where ../share/config leads there.
set(LCD_INSTALL_CONFIGDIR "${CMAKE_INSTALL_DATADIR}/config"
    CACHE STRING "Where the sample configuration is installed, relative to the prefix")
set(LCD_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/LcdConfigModel")

set_target_properties(lcdconfigmodelplugin PROPERTIES EXPORT_NAME plugin)
target_include_directories(lcdconfigmodelplugin PUBLIC $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

install(TARGETS lcdconfigmodelplugin EXPORT LcdConfigModelTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime)
install(TARGETS lcdcfg RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
install(FILES include/lcdconfigmodel.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT devel)
install(DIRECTORY include/lcdconfigmodel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT devel
        FILES_MATCHING PATTERN "*.h")
install(DIRECTORY share/config/ DESTINATION ${LCD_INSTALL_CONFIGDIR} COMPONENT runtime)
# The schemas of the description files and their XML catalog (docs/editors.md).
install(DIRECTORY share/schema/ DESTINATION ${CMAKE_INSTALL_DATADIR}/schema COMPONENT runtime)

install(EXPORT LcdConfigModelTargets NAMESPACE LcdConfigModel:: DESTINATION ${LCD_INSTALL_CMAKEDIR}
        COMPONENT devel)
configure_package_config_file(cmake/LcdConfigModelConfig.cmake.in
    ${CMAKE_CURRENT_BINARY_DIR}/LcdConfigModelConfig.cmake
    INSTALL_DESTINATION ${LCD_INSTALL_CMAKEDIR}
    PATH_VARS LCD_INSTALL_CONFIGDIR)
# 0.x: a new minor version may change the interfaces.
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/LcdConfigModelConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/LcdConfigModelConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/LcdConfigModelConfigVersion.cmake
        DESTINATION ${LCD_INSTALL_CMAKEDIR} COMPONENT devel)

# pkg-config: the prefix is found from the file's own place, so the tree stays
# relocatable. Qt is built with reduced relocations, so a host must be
# position-independent code (-fPIC); Qt's own .pc files do not say so.
file(RELATIVE_PATH LCD_PC_TO_PREFIX "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
string(REGEX REPLACE "/$" "" LCD_PC_TO_PREFIX "${LCD_PC_TO_PREFIX}")
configure_file(cmake/lcdconfigmodel.pc.in ${CMAKE_CURRENT_BINARY_DIR}/lcdconfigmodel.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/lcdconfigmodel.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT devel)
