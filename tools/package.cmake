# The Debian package: `cpack` in a build directory makes it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qrx-cli)
set(CPACK_PACKAGE_VENDOR "The qrx_cli developers")
set(CPACK_PACKAGE_CONTACT "The qrx_cli developers <developers@qrx-cli.example>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "manage a PCIe NVMe RAID controller")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"qrx_cli shows and changes the controllers, physical disks, virtual disks and
namespaces of a PCIe NVMe RAID controller, updates its firmware, and reads its
health and its logs, one command at a time or in an interactive shell.
.
qrx_sim, which comes with it, runs qrx_cli and other programs on a machine with
a simulated controller.")
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
foreach(target qrx_cli qrx_sim qrx_sim_preload)
    target_link_options(${target} PRIVATE LINKER:--build-id=none)
endforeach()
include(CPack)
