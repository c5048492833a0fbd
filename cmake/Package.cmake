# Installation and the Debian package.
#
#   <prefix>/lib/PFChartModule/libPFChartModule.so.1   the module, in a folder of its own as a
#                                                      terminal keeps its plug-in modules
#   <prefix>/bin/pfhost                                the emulated terminal
#   <prefix>/share/PFChartModule/examples/             example price data, pfhost's built-in
#                                                      instruments
#
# The module is a plug-in loaded with dlopen by file name, never linked, so it goes in a
# folder of its own rather than the linker's search path, without the libPFChartModule.so
# development link. pfhost finds it and the examples relative to its own folder, so the
# installed tree works wherever it is unpacked. `cpack -G DEB` (or the `package` target)
# makes pfchartmodule-qt<5|6>_<version>_<arch>.deb with the prefix /usr: the module must run on
# its terminal's Qt, so the package says which one it was built against.
include(GNUInstallDirs)

set(PF_INSTALL_MODULE_DIR "lib/PFChartModule" CACHE STRING
    "Folder of the installed module, relative to the installation prefix")
set(PF_INSTALL_DATA_DIR "${CMAKE_INSTALL_DATAROOTDIR}/PFChartModule" CACHE STRING
    "Folder of the installed example data, relative to the installation prefix")

install(TARGETS PFChartModule LIBRARY DESTINATION ${PF_INSTALL_MODULE_DIR} NAMELINK_SKIP)
install(TARGETS pfhost RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY examples/ DESTINATION ${PF_INSTALL_DATA_DIR}/examples)

# The installed places as pfhost sees them from its own folder.
file(RELATIVE_PATH PF_MODULE_FROM_BIN /prefix/${CMAKE_INSTALL_BINDIR}
     /prefix/${PF_INSTALL_MODULE_DIR}/libPFChartModule.so.1)
file(RELATIVE_PATH PF_EXAMPLES_FROM_BIN /prefix/${CMAKE_INSTALL_BINDIR}
     /prefix/${PF_INSTALL_DATA_DIR}/examples)
set_property(SOURCE host/InstallPaths.cpp APPEND PROPERTY COMPILE_DEFINITIONS
  PF_INSTALLED_MODULE="${PF_MODULE_FROM_BIN}"
  PF_INSTALLED_EXAMPLES="${PF_EXAMPLES_FROM_BIN}")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME pfchartmodule-qt${PF_QT_VERSION})
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "Point and Figure, Renko and Kagi chart module for a trading terminal")
set(CPACK_PACKAGE_DESCRIPTION
    "libPFChartModule.so.1, the chart plug-in module a trading terminal loads at run time, \
with pfhost, an emulator of the terminal that loads it, and example price data. \
Built for terminals on Qt ${PF_QT_VERSION}.")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "PFChartModule developers")
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# Depends from the Qt and C++ libraries the two binaries use; the charts need a font. Qt 6
# keeps its platform plugins (offscreen, xcb), which pfhost cannot start without, in a package
# of their own; Qt 5 has them in libqt5gui5.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
if(PF_QT_VERSION EQUAL 6)
  set(CPACK_DEBIAN_PACKAGE_DEPENDS qt6-qpa-plugins)
endif()
# The Qt 5 and the Qt 6 package hold the same files: either one is installed, and each takes
# the other's place (and that of the earlier package named pfchartmodule).
set(CPACK_DEBIAN_PACKAGE_PROVIDES pfchartmodule)
set(CPACK_DEBIAN_PACKAGE_CONFLICTS pfchartmodule)
set(CPACK_DEBIAN_PACKAGE_REPLACES pfchartmodule)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS fonts-dejavu-core)
# The debug information stays in the build tree; stripping keeps the dynamic symbols.
set(CPACK_STRIP_FILES ON)
include(CPack)
