# Code 39 drawn bar by bar, and the runtime's message box it may show.
target_sources(kaloimpresora PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/cls_barcode39.cpp
  ${CMAKE_CURRENT_LIST_DIR}/codigo39.cpp
  ${CMAKE_CURRENT_LIST_DIR}/../runtime/mensajes.cpp)
