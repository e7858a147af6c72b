#pragma once
// Moved to tests/comun; this name stays while files outside the folder still use it.
#include "comun/herramientas_pdf.h"
