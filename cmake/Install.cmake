# What an embedding program finds: libraries, the public headers under velanor/, and find_package(Velanor) with
# the targets Velanor::core, Velanor::sqlite, Velanor::postgres and, where it was built, Velanor::qt.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/Velanor)

set_target_properties(velanor_store PROPERTIES EXPORT_NAME store)
set_target_properties(velanor_core PROPERTIES EXPORT_NAME core)
set_target_properties(velanor_sqlite PROPERTIES EXPORT_NAME sqlite)
set_target_properties(velanor_postgres PROPERTIES EXPORT_NAME postgres)
target_include_directories(velanor_store INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
set(exported velanor_store velanor_core velanor_sqlite velanor_postgres)
if(TARGET velanor_qt)
  set_target_properties(velanor_qt PROPERTIES EXPORT_NAME qt)
  list(APPEND exported velanor_qt)
  set(VELANOR_HAS_QT ON)
else()
  set(VELANOR_HAS_QT OFF)
endif()

install(TARGETS ${exported} EXPORT VelanorTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT VelanorTargets NAMESPACE Velanor:: DESTINATION ${package})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/velanor DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS velanorctl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# The window, and its place in the menus of the desktop.
if(TARGET velanor)
  install(TARGETS velanor RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  set(desk ${PROJECT_SOURCE_DIR}/src/app/velanor)
  install(FILES ${desk}/velanor.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
  install(FILES ${desk}/icon/velanor.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
  foreach(size 16 32 48 64 128)
    install(FILES ${desk}/icon/velanor-${size}.png RENAME velanor.png
      DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
  endforeach()
endif()

# Designer looks in the `designer` folder of every folder of QT_PLUGIN_PATH.
if(TARGET velanor_designer)
  install(TARGETS velanor_designer LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/qt6/plugins/designer)
endif()

configure_package_config_file(cmake/VelanorConfig.cmake.in ${PROJECT_BINARY_DIR}/VelanorConfig.cmake
  INSTALL_DESTINATION ${package})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/VelanorConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VelanorConfig.cmake ${PROJECT_BINARY_DIR}/VelanorConfigVersion.cmake
  DESTINATION ${package})
