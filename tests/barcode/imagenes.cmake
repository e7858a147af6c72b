# The pictures are read back with libzbar, a decoder independent of the encoder.
find_package(PkgConfig REQUIRED)
pkg_check_modules(ZBAR REQUIRED IMPORTED_TARGET zbar)
target_sources(pruebas PRIVATE ${CMAKE_CURRENT_LIST_DIR}/prueba_imagenes_zint.cpp)
target_link_libraries(pruebas PRIVATE PkgConfig::ZBAR)
