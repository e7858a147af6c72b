#pragma once

#include <QString>

namespace kalo {

// The amount in Spanish words, in capitals: the integer part, then `leyenda`,
// then the cents as "NN/100" when `decimales`, then `leyenda2`, one space
// between the parts that are not empty. Rounds to whole cents first (halves
// away from zero, on the amount as written in decimal); an amount of 10^15 or
// more, NaN or infinity raises error 6.
QString ImporteEnLetra(double numero, const QString& leyenda, bool decimales, const QString& leyenda2);

}  // namespace kalo
