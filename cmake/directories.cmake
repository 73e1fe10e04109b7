# Where installed files go, below the prefix. On Debian the library directory bears the architecture's name whatever the
# prefix, so that the same build can be installed anywhere and packaged.
if(EXISTS /etc/debian_version AND CMAKE_LIBRARY_ARCHITECTURE AND NOT CMAKE_CROSSCOMPILING)
  set(CMAKE_INSTALL_LIBDIR lib/${CMAKE_LIBRARY_ARCHITECTURE} CACHE PATH "Libraries and modules")
endif()
include(GNUInstallDirs)
set(voktarn_include_dir ${CMAKE_INSTALL_INCLUDEDIR}/voktarn)
set(voktarn_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VokTarn)
set(voktarn_doc_dir ${CMAKE_INSTALL_DATAROOTDIR}/doc/tarn)
