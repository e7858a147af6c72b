# The pictures are read back with libzbar, a decoder independent of the encoder.
find_package(PkgConfig REQUIRED)
pkg_check_modules(ZBAR REQUIRED IMPORTED_TARGET zbar)
target_link_libraries(pruebas PRIVATE PkgConfig::ZBAR)
