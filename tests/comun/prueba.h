#pragma once

// What every test file starts from: GoogleTest, the Qt and standard headers
// most cases use, the component's public API, the pictures and the Qt
// application object, and the suite's helpers, with their names in scope.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "comun/impresora_con_grabadores.h"
#include "comun/lectura_de_reporte.h"
#include "comun/objeto_grabador.h"
#include "comun/utilerias_de_prueba.h"
#include "kaloimpresora/conversiones.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"
#include "kaloimpresora/superficies.h"
#include "runtime/aplicacion.h"
#include "target/imagen.h"

using namespace kalo;
using namespace kalo::prueba;
using namespace Qt::StringLiterals;
