# The kaloimpresora command, run as a program, and its viewer in-process.
target_sources(pruebas PRIVATE ${CMAKE_CURRENT_LIST_DIR}/prueba_herramienta.cpp)
target_link_libraries(pruebas PRIVATE kaloherramienta)
target_compile_definitions(pruebas PRIVATE KALO_HERRAMIENTA="$<TARGET_FILE:kaloimpresora-herramienta>")
add_dependencies(pruebas kaloimpresora-herramienta)
