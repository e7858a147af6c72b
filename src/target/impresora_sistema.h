#pragma once

// The runtime's printer object over the print system: one QPrinter for one
// print-server destination (or for PDF files when there is none), drawn on
// through the same Lienzo as the preview surfaces and reached by member name.
//
// EndDoc hands the job to the print server. Each job is painted into a file
// of its own and only sent when it ends, so KillDoc can drop it.

#include <QPageLayout>
#include <QPageSize>
#include <QString>
#include <memory>
#include <optional>

#include "kaloimpresora/impresoras.h"
#include "target/impresora_comun.h"

class QPrinter;
class QPrinterInfo;

namespace kalo {

// The print server's spelling of a custom sheet, "Custom.101.6x152.4mm", and
// back; std::nullopt for a media name that is not a custom size.
QByteArray MedioPersonalizado(QSizeF milimetros);
std::optional<QSizeF> MilimetrosDeMedio(const QByteArray& medio);

class ImpresoraDelSistema : public ImpresoraComun {
public:
    // A destination of the print server, by its queue as Qt lists it.
    static std::shared_ptr<ImpresoraDelSistema> DeDestino(const QPrinterInfo& destino);
    // The embedded default: every job becomes a PDF file in carpeta
    // (created when missing), named documento-AAAAMMDD-HHMMSS[-n].pdf.
    static std::shared_ptr<ImpresoraDelSistema> EnPdf(const QString& carpeta);
    // The embedded default writing every job to this one file, which each
    // ended job replaces whole; a killed job leaves it as it was.
    static std::shared_ptr<ImpresoraDelSistema> EnArchivoPdf(const QString& archivo);

    // A job still open is ended and sent, as the runtime does when it exits.
    ~ImpresoraDelSistema() override;

    bool EsPdf() const { return !carpetaPdf_.isEmpty() || !archivoPdf_.isEmpty(); }
    // The device itself, for measuring or painting on it beside this object.
    QPrinter& Dispositivo() { return *impresora_; }

    // The PDF file the last ended job became (embedded default only).
    QString ArchivoDeSalida() const override { return archivoDeSalida_; }
    // The print server's number for the last job sent; 0 before any.
    int32_t UltimoTrabajo() const { return ultimoTrabajo_; }

protected:
    QPageLayout Hoja() const override;
    void CambiaHoja(const QPageSize& hoja, QPageLayout::Orientation orientacion) override;
    QSize AreaDibujable() const override;
    double Resolucion() const override;
    void IniciaTrabajo() override;
    void PasaPagina() override;
    void CierraTrabajo(bool entrega, int32_t paginas) override;

private:
    ImpresoraDelSistema(QString nombre, const QPrinterInfo* destino, QString carpetaPdf, QString archivoPdf = {});

    void Entrega(const QString& archivo);

    QString carpetaPdf_;
    QString archivoPdf_;
    std::unique_ptr<QPrinter> impresora_;
    QString archivoDelTrabajo_;
    QString archivoDeSalida_;
    int32_t ultimoTrabajo_ = 0;
};

}  // namespace kalo
