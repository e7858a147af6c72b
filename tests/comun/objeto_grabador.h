#pragma once

// A drawing target for tests: keeps every property assigned to it, answers
// reads from those values, and logs every member call in order. Members
// outside `miembros` (when given) do not exist, as on a host's partial object.

#include <QStringList>
#include <vector>

#include "kaloimpresora/automatizacion.h"

namespace kalo::prueba {

struct Llamado {
    QString miembro;
    Llamada tipo;
    std::vector<Variant> argumentos;
};

class ObjetoGrabador : public Objeto {
public:
    ObjetoGrabador() = default;
    explicit ObjetoGrabador(QStringList soloEstos) : miembros_(std::move(soloEstos)) {}

    int32_t IdDeNombre(const QString& nombre) const override {
        if (!miembros_.isEmpty() && !miembros_.contains(nombre, Qt::CaseInsensitive)) return kDispidDesconocido;
        const QString clave = nombre.toLower();
        if (!nombres_.contains(clave)) nombres_.append(clave);
        return static_cast<int32_t>(nombres_.indexOf(clave)) + 1;
    }

    Variant Invoca(int32_t dispid, Llamada tipo, std::span<Variant> args) override {
        if (dispid < 1 || dispid > nombres_.size()) return Objeto::Invoca(dispid, tipo, args);
        const QString& nombre = nombres_[dispid - 1];
        llamados.push_back({nombre, tipo, {args.begin(), args.end()}});
        if (tipo == Llamada::AsignaValor || tipo == Llamada::AsignaReferencia) {
            valores_[nombre] = args.empty() ? Variant() : args[0];
            return Variant();
        }
        return Valor(nombre);
    }

    void Pon(const QString& propiedad, Variant valor) { valores_[propiedad.toLower()] = std::move(valor); }
    Variant Valor(const QString& propiedad) const {
        auto it = valores_.find(propiedad.toLower());
        return it == valores_.end() ? Variant() : it->second;
    }

    // The calls that reached `miembro` (any letter case), in order.
    std::vector<Llamado> De(const QString& miembro) const {
        std::vector<Llamado> r;
        for (const auto& l : llamados)
            if (l.miembro.compare(miembro, Qt::CaseInsensitive) == 0) r.push_back(l);
        return r;
    }
    // "Asigna ScaleMode=5", "Lee ScaleHeight", "Llama Scale(0,0,8.5,11)": the log as text.
    QStringList Registro() const {
        QStringList r;
        for (const auto& l : llamados) {
            QStringList args;
            for (const auto& a : l.argumentos) args << (a.esObjeto() ? QStringLiteral("<objeto>") : CStr(a));
            switch (l.tipo) {
            case Llamada::LeePropiedad: r << QStringLiteral("Lee ") + l.miembro; break;
            case Llamada::AsignaValor:
            case Llamada::AsignaReferencia: r << QStringLiteral("Asigna ") + l.miembro + u'=' + args.join(u','); break;
            case Llamada::Metodo: r << QStringLiteral("Llama ") + l.miembro + u'(' + args.join(u',') + u')'; break;
            }
        }
        return r;
    }

    std::vector<Llamado> llamados;

private:
    QStringList miembros_;
    mutable QStringList nombres_;
    std::map<QString, Variant> valores_;
};

}  // namespace kalo::prueba
