#pragma once

// Replay of recorded command texts: one line parsed back into the command
// word and its argument values, and run through the automation boundary.

#include <QString>
#include <QStringView>
#include <cstdint>
#include <optional>
#include <vector>

#include "kaloimpresora/automatizacion.h"
#include "spool/lector.h"

namespace kalo {

struct Comando {
    QString palabra;  // exactly as the member is spelled in the recorder's allow-list
    std::vector<Variant> argumentos;
};

// Parses one command text as the recorder writes it (a trailing line break is
// ignored), in time linear in its length; a text above limite::kComando is
// refused unread. Fn numbers come back as doubles, True/False as booleans, quoted
// texts as texts. Only commands the recorder writes are accepted: a script is
// untrusted input and must never reach members that touch files, ports or
// windows. On failure, nullopt and a Spanish message in *error.
std::optional<Comando> LeeComando(QStringView linea, QString* error = nullptr);

// Runs the command on the object by member name.
void EjecutaComando(Objeto& impresora, Comando& c);

}  // namespace kalo
