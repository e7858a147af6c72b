# libFuzzer target for the script parser, built with clang beside the g++
# build: the parser's own source is compiled instrumented, the rest comes
# from the internal library. ctest runs the corpus once; long runs are by hand:
#   build/tests/fuzz_guion -max_total_time=600 tests/fuzz/corpus
find_program(KALO_CLANGXX NAMES clang++ clang++-14)
if(NOT KALO_CLANGXX)
  message(STATUS "clang++ not found: the parser's fuzz target is not built")
  return()
endif()
# clang without its libFuzzer runtime cannot build the target either.
set(KALO_SONDA ${CMAKE_CURRENT_BINARY_DIR}/sonda_fuzz)
file(WRITE ${KALO_SONDA}.cpp "extern \"C\" int LLVMFuzzerTestOneInput(const unsigned char*, unsigned long) { return 0; }\n")
execute_process(COMMAND ${KALO_CLANGXX} -fsanitize=fuzzer,address,undefined ${KALO_SONDA}.cpp -o ${KALO_SONDA}
  RESULT_VARIABLE KALO_SONDA_RESULTADO OUTPUT_QUIET ERROR_QUIET)
if(NOT KALO_SONDA_RESULTADO EQUAL 0)
  message(STATUS "clang++ cannot link libFuzzer here: the parser's fuzz target is not built")
  return()
endif()
set(KALO_FUZZ_BIN ${CMAKE_CURRENT_BINARY_DIR}/fuzz_guion)
set(KALO_FUZZ_FUENTES ${CMAKE_CURRENT_LIST_DIR}/fuzz_guion.cpp ${PROJECT_SOURCE_DIR}/src/spool/guion.cpp)
add_custom_command(
  OUTPUT ${KALO_FUZZ_BIN}
  COMMAND ${KALO_CLANGXX} -std=c++20 -g -O1 -fPIC -fsanitize=fuzzer,address,undefined
    -fno-sanitize-recover=undefined
    -I${PROJECT_SOURCE_DIR}/include -I${PROJECT_SOURCE_DIR}/src
    "-I$<JOIN:$<TARGET_PROPERTY:Qt6::Core,INTERFACE_INCLUDE_DIRECTORIES>,;-I>"
    ${KALO_FUZZ_FUENTES}
    $<TARGET_FILE:kaloimpresora_interno> $<TARGET_FILE:Qt6::PrintSupport> $<TARGET_FILE:Qt6::Widgets>
    $<TARGET_FILE:Qt6::Gui> $<TARGET_FILE:Qt6::Core> -lsqlite3 -lcups -lzint -ldl
    -o ${KALO_FUZZ_BIN}
  DEPENDS ${KALO_FUZZ_FUENTES} kaloimpresora_interno ${PROJECT_SOURCE_DIR}/src/spool/guion.h
  COMMAND_EXPAND_LISTS
  VERBATIM
  COMMENT "Fuzz target of the script parser (clang, libFuzzer)")
add_custom_target(objetivo_fuzz_guion ALL DEPENDS ${KALO_FUZZ_BIN})
add_test(NAME Guion.CorpusDelFuzzer COMMAND ${KALO_FUZZ_BIN} -runs=0 ${CMAKE_CURRENT_LIST_DIR}/corpus)
