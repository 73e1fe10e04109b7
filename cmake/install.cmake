# What `cmake --install` puts below the prefix: the program, the libraries, what others need to write modules and to embed
# sessions, the documents.
include(CMakePackageConfigHelpers)

install(TARGETS tarn VokTarn VokFenAbstractTypes VokFenNumbers VokFenEnumIntegers tarn_session EXPORT VokTarnTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${voktarn_include_dir})

install(FILES $<TARGET_FILE_DIR:tarn>/fzn-tarn DESTINATION ${CMAKE_INSTALL_BINDIR})

# A header with a class bears its name; the others serve the libraries' own sources.
install(DIRECTORY src/framework src/numbers src/constraints src/domain src/tarn DESTINATION ${voktarn_include_dir}
  FILES_MATCHING PATTERN "[A-Z]*.h"
  PATTERN commands EXCLUDE PATTERN kernels EXCLUDE)
install(DIRECTORY src/base DESTINATION ${voktarn_include_dir} FILES_MATCHING PATTERN "*.h")

# ---- For find_package and pkg-config
install(EXPORT VokTarnTargets NAMESPACE VokTarn:: DESTINATION ${voktarn_package_dir})
configure_package_config_file(cmake/VokTarnConfig.cmake.in ${CMAKE_BINARY_DIR}/VokTarnConfig.cmake
  INSTALL_DESTINATION ${voktarn_package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/VokTarnConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/VokTarnConfig.cmake ${CMAKE_BINARY_DIR}/VokTarnConfigVersion.cmake
  DESTINATION ${voktarn_package_dir})
file(RELATIVE_PATH voktarn_prefix_from_pc ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" voktarn_prefix_from_pc ${voktarn_prefix_from_pc})
configure_file(cmake/voktarn.pc.in ${CMAKE_BINARY_DIR}/voktarn.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/voktarn.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# ---- Completions. Debian's zsh looks for those of packages in a directory of its own.
install(FILES cmake/completions/tarn.bash DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions
  RENAME tarn)
install(CODE [[
  set(zsh_directory site-functions)
  if(EXISTS /etc/debian_version AND CMAKE_INSTALL_PREFIX MATCHES "/usr$")
    set(zsh_directory vendor-completions)
  endif()
]])
install(FILES cmake/completions/_tarn DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/zsh/\${zsh_directory}")

# ---- Documents
install(FILES LICENSE DESTINATION ${voktarn_doc_dir} RENAME copyright)
install(FILES README.md DESTINATION ${voktarn_doc_dir})
install(DIRECTORY docs/ DESTINATION ${voktarn_doc_dir} FILES_MATCHING PATTERN "*.md" PATTERN manual EXCLUDE)
install(DIRECTORY examples DESTINATION ${voktarn_doc_dir})

# ---- For MiniZinc: its library of what is passed on to the program, and the description of the program. The build tree
# has the same in the same places, and a description for other places, which the script `tarn` makes known to MiniZinc.
set(voktarn_minizinc_dir ${CMAKE_INSTALL_DATAROOTDIR}/minizinc)
file(RELATIVE_PATH voktarn_fzn_program ${CMAKE_INSTALL_FULL_DATAROOTDIR}/minizinc/solvers
  ${CMAKE_INSTALL_FULL_BINDIR}/fzn-tarn)
set(voktarn_fzn_library ../tarn)
configure_file(share/minizinc/tarn.msc.in ${CMAKE_BINARY_DIR}/tarn.msc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/tarn.msc DESTINATION ${voktarn_minizinc_dir}/solvers)
install(DIRECTORY share/minizinc/tarn DESTINATION ${voktarn_minizinc_dir})
set(voktarn_fzn_program ../../../bin/fzn-tarn)
configure_file(share/minizinc/tarn.msc.in ${CMAKE_BINARY_DIR}/share/minizinc/solvers/tarn.msc @ONLY)
set(voktarn_fzn_program ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/fzn-tarn)
set(voktarn_fzn_library ${CMAKE_SOURCE_DIR}/share/minizinc/tarn)
configure_file(share/minizinc/tarn.msc.in ${CMAKE_BINARY_DIR}/share/minizinc/tarn.msc @ONLY)
file(CREATE_LINK ${CMAKE_SOURCE_DIR}/share/minizinc/tarn ${CMAKE_BINARY_DIR}/share/minizinc/tarn SYMBOLIC)
