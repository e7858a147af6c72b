# Barcode pictures drawn by libzint (Debian's libzint-dev ships no pkg-config file).
find_path(ZINT_INCLUDE_DIR zint.h REQUIRED)
find_library(ZINT_LIBRARY zint REQUIRED)
target_sources(kaloimpresora PRIVATE ${CMAKE_CURRENT_LIST_DIR}/imagenes_zint.cpp)
target_include_directories(kaloimpresora PRIVATE ${ZINT_INCLUDE_DIR})
target_link_libraries(kaloimpresora PRIVATE ${ZINT_LIBRARY})
