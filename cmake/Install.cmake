# Installation: the layer libraries and their headers, the engine variants, the CMake config
# package (namespace ctree::) and the pkg-config file.
include(CMakePackageConfigHelpers)

# Every public header lands in one folder, include/ctree, so that generic names such as Variant.h
# or TList.h never meet another package's files. The headers include each other by bare name,
# which that one folder keeps working.
set(CT_INSTALL_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/ctree)
set(CT_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/CtreeComponents)

# ct_install_library(<target>)
# Installs a layer's library into the export set and the layer's include/ folder into
# include/ctree. Call it from the layer's CMakeLists after the target is defined.
function(ct_install_library target)
  target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${CT_INSTALL_INCLUDEDIR}>)
  target_compile_features(${target} INTERFACE cxx_std_20)
  install(TARGETS ${target} EXPORT CtreeComponentsTargets
          ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/include/ DESTINATION ${CT_INSTALL_INCLUDEDIR}
          FILES_MATCHING PATTERN "*.h")
  add_library(ctree::${target} ALIAS ${target})
endfunction()

# Writes the export set, the config and version files and the pkg-config file. Called once, at
# the end of the top-level CMakeLists.
function(ct_install_package)
  install(EXPORT CtreeComponentsTargets NAMESPACE ctree:: DESTINATION ${CT_INSTALL_CMAKEDIR})
  configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/CtreeComponentsConfig.cmake.in
    ${PROJECT_BINARY_DIR}/CtreeComponentsConfig.cmake INSTALL_DESTINATION ${CT_INSTALL_CMAKEDIR}
    PATH_VARS CT_INSTALL_INCLUDEDIR)
  # 0.x releases break compatibility between minor versions.
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/CtreeComponentsConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
  install(FILES ${PROJECT_BINARY_DIR}/CtreeComponentsConfig.cmake
                ${PROJECT_BINARY_DIR}/CtreeComponentsConfigVersion.cmake
          DESTINATION ${CT_INSTALL_CMAKEDIR})
  # The .pc file finds the prefix from its own folder, so that the installed tree can move (and
  # `cmake --install --prefix` need not match the configured prefix). The libraries are static,
  # so their own dependencies go in Libs; the RUNPATH lets the program find the engine at run time.
  file(RELATIVE_PATH CT_PC_TO_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(REGEX REPLACE "/$" "" CT_PC_TO_PREFIX "${CT_PC_TO_PREFIX}")
  configure_file(${PROJECT_SOURCE_DIR}/cmake/ctree-components.pc.in
                 ${PROJECT_BINARY_DIR}/ctree-components.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/ctree-components.pc
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
  install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/ctree-components)
endfunction()
