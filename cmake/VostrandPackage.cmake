# `cpack` in the build folder makes a Debian package of everything: library, headers, programs, tool chain.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vostrand)
set(CPACK_PACKAGE_VENDOR "vostrand developers")
set(CPACK_PACKAGE_CONTACT "vostrand developers <vostrand@example.org>")
set(CPACK_PACKAGE_DESCRIPTION "Runs one circuit design through many place-and-route runs with different
seeds, times each, scores every run against weighted timing preferences,
picks the best, promotes its files and reports on all of them. Holds the
library for programs that want to host it, its headers, and par and sorv
over open engines.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian_habits.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/lib)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "nextpnr-generic, opensta, yosys")  # Other tools may take the place of ours.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "g++, qt6-base-dev, slurm-client")
# Who needs the library finds this package, and dpkg tells the loader.
set(debian ${PROJECT_BINARY_DIR}/debian)
file(CONFIGURE OUTPUT ${debian}/shlibs CONTENT "libvostrandlib 1 vostrand (>= ${PROJECT_VERSION})\n")
file(CONFIGURE OUTPUT ${debian}/triggers CONTENT "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${debian}/shlibs ${debian}/triggers)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
