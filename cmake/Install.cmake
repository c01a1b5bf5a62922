# `cmake --install` puts a package in place that another project finds by find_package(RegistryRules): the DLLs with those
# of the toolchain, the import libraries, the toolkit, the headers, and RulesHost.exe with its sample.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(package_headers ${CMAKE_INSTALL_INCLUDEDIR}/RegistryRules)
set(package_cmake ${CMAKE_INSTALL_LIBDIR}/cmake/RegistryRules)

if(CMAKE_BUILD_TYPE STREQUAL Checked)
    # The guarded stack of the checked objects, for programs that are not themselves built with it.
    target_link_libraries(toolkit INTERFACE $<INSTALL_INTERFACE:ssp>)
endif()
install(TARGETS RegistryRules RulesC RegistryRulesFramework ZmUiCtrl ZmCoreSv toolkit decisions EXPORT RegistryRulesTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS RulesHost RulesProbe RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/RulesC.lib DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES src/capi/registry_rules.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DATADIR}/RegistryRules)
install(FILES ${runtime_dlls} DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES host/sample-rules.json DESTINATION ${CMAKE_INSTALL_DATADIR}/RegistryRules)
install(FILES LICENSE THIRD-PARTY-NOTICES.md CHANGELOG.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DATADIR}/RegistryRules)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DATADIR}/RegistryRules)

# The headers keep their folders, because they include each other by them.
install(FILES src/rules/RegistryRulesCtrl.h DESTINATION ${package_headers}/rules)
foreach(folder framework siblings helpers registry crypto files transports profiles offline carry)
    if(EXISTS ${PROJECT_SOURCE_DIR}/src/${folder})
        install(DIRECTORY src/${folder} DESTINATION ${package_headers} FILES_MATCHING PATTERN *.h)
    endif()
endforeach()

install(EXPORT RegistryRulesTargets NAMESPACE RegistryRules:: DESTINATION ${package_cmake})
set(package_dlls RegistryRules.dll RulesC.dll RegistryRulesFramework.dll ZmUiCtrl.dll ZmCoreSv.dll ${toolchain_dlls})
configure_package_config_file(cmake/RegistryRulesConfig.cmake.in ${CMAKE_BINARY_DIR}/RegistryRulesConfig.cmake
    INSTALL_DESTINATION ${package_cmake} PATH_VARS CMAKE_INSTALL_BINDIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/RegistryRulesConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/RegistryRulesConfig.cmake ${CMAKE_BINARY_DIR}/RegistryRulesConfigVersion.cmake
    DESTINATION ${package_cmake})
