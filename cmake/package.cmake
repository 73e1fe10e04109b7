# `cpack -G DEB` makes one Debian package of everything that is installed. It wants the manual page, and whether there is
# one is settled when the tree is configured: the script `package` sees to both.
set(CPACK_PACKAGE_NAME tarn)
set(CPACK_PACKAGE_CONTACT "The authors of tarn <tarn@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "constraint solver whose domain types are plug-in modules")
set(CPACK_PACKAGE_DESCRIPTION "tarn reads models over integers and truth values, narrows the variables'
domains by constraint propagation and searches for solutions.
.
The package holds the program, the framework library with its modules, and
what is needed to write modules and to embed the solver: headers, a CMake
package, examples.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION math)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS minizinc)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
file(WRITE ${CMAKE_BINARY_DIR}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_BINARY_DIR}/triggers)
if(NOT HELP2MAN)
  file(WRITE ${CMAKE_BINARY_DIR}/noManual.cmake "message(FATAL_ERROR \"a package needs the manual page: help2man\")\n")
  set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_BINARY_DIR}/noManual.cmake)
endif()
include(CPack)
