# The runtime's printer over Qt PrintSupport and the print server (CUPS): jobs
# are painted to a file and handed to the server with its client library.
find_package(Cups REQUIRED)
target_sources(kaloimpresora PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/impresora_sistema.cpp
  ${CMAKE_CURRENT_LIST_DIR}/impresoras.cpp
)
target_link_libraries(kaloimpresora PRIVATE Cups::Cups)
