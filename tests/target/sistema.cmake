# Tests of this area: target_sources(pruebas PRIVATE ${CMAKE_CURRENT_LIST_DIR}/...) or add_test(...)
target_sources(pruebas PRIVATE ${CMAKE_CURRENT_LIST_DIR}/prueba_impresora_sistema.cpp)

# Against a private print server, in a program of its own: the print client
# library reads CUPS_SERVER once per process. One run shares one server among
# the Cups tests (starting one takes most of a second); the no-server case
# runs apart.
set(KALO_DIR_CUPS ${CMAKE_CURRENT_LIST_DIR}/../cups)
add_executable(pruebas_cups ${KALO_DIR_CUPS}/prueba_impresora_cups.cpp)
target_include_directories(pruebas_cups PRIVATE ${CMAKE_CURRENT_LIST_DIR}/..)
target_link_libraries(pruebas_cups PRIVATE KaloImpresora::interno GTest::gtest PkgConfig::ZBAR)
target_compile_definitions(pruebas_cups PRIVATE
  KALO_SCRIPT_CUPS="${KALO_DIR_CUPS}/servidor_cups.sh"
  KALO_PPD_DE_PRUEBA="${KALO_DIR_CUPS}/prueba.ppd")
add_test(NAME ImpresoraDelSistema.ServidorCupsPrivado COMMAND pruebas_cups --gtest_filter=Cups.*)
add_test(NAME ImpresoraDelSistema.SinServidorCups COMMAND pruebas_cups --sin-servidor --gtest_filter=SinServidor.*)
set_tests_properties(ImpresoraDelSistema.ServidorCupsPrivado ImpresoraDelSistema.SinServidorCups
  PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen" TIMEOUT 120)
