#include "paper/formas.h"

#include <cups/cups.h>

#include <cmath>

#include "kaloimpresora/impresora.h"
#include "target/impresora_sistema.h"

namespace kalo::formas {

namespace {

QByteArray Medio(int32_t cx, int32_t cy) { return MedioPersonalizado(QSizeF(cx / 1000.0, cy / 1000.0)); }

}  // namespace

QString ColaDe(const QString& dispositivo) { return dispositivo.section(u'/', 0, 0); }

bool NombreValido(const QString& nombre) {
    if (nombre.isEmpty()) return false;
    for (const QChar c : nombre)
        if (c.isSpace() || c.category() == QChar::Other_Control || c == u'/') return false;
    return true;
}

Destinos::Destinos() { n_ = cupsGetDests2(CUPS_HTTP_DEFAULT, &lista_); }

Destinos::~Destinos() { cupsFreeDests(n_, lista_); }

// As the print server compares names: without regard to case.
cups_dest_s* Destinos::Busca(const QString& cola, const QString& instancia) const {
    const QByteArray i = instancia.toLocal8Bit();
    return cupsGetDest(cola.toLocal8Bit().constData(), i.isEmpty() ? nullptr : i.constData(), n_, lista_);
}

bool Destinos::HayCola(const QString& cola) const { return !cola.isEmpty() && Busca(cola, {}); }

bool Destinos::Agrega(const QString& cola, const QString& nombre, int32_t cx, int32_t cy) {
    if (!NombreValido(nombre) || !HayCola(cola) || Busca(cola, nombre)) return false;
    n_ = cupsAddDest(cola.toLocal8Bit().constData(), nombre.toLocal8Bit().constData(), n_, &lista_);
    return Redefine(cola, nombre, cx, cy);
}

bool Destinos::Redefine(const QString& cola, const QString& nombre, int32_t cx, int32_t cy) {
    cups_dest_t* d = Busca(cola, nombre);
    if (!d || nombre.isEmpty()) return false;
    d->num_options = cupsAddOption("media", Medio(cx, cy).constData(), d->num_options, &d->options);
    return cupsSetDests2(CUPS_HTTP_DEFAULT, n_, lista_) == 0;
}

std::optional<QSize> Destinos::Tamano(const QString& cola, const QString& nombre) const {
    const cups_dest_t* d = nombre.isEmpty() ? nullptr : Busca(cola, nombre);
    if (!d) return std::nullopt;
    const auto mm = MilimetrosDeMedio(cupsGetOption("media", d->num_options, d->options));
    if (!mm) return std::nullopt;
    return QSize(static_cast<int>(std::lround(mm->width() * 1000)), static_cast<int>(std::lround(mm->height() * 1000)));
}

std::vector<Forma> Destinos::FormasDe(const QString& cola) const {
    const QString prefijo = QString::fromUtf16(kEstiloPredeterminado) + u'_';
    std::vector<Forma> formas;
    for (int i = 0; i < n_; ++i) {
        const QString instancia = QString::fromLocal8Bit(lista_[i].instance);
        if (QString::fromLocal8Bit(lista_[i].name).compare(cola, Qt::CaseInsensitive) != 0 ||
            !instancia.startsWith(prefijo))
            continue;
        formas.push_back({instancia, Tamano(cola, instancia).value_or(QSize())});
    }
    return formas;
}

}  // namespace kalo::formas
