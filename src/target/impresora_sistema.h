#pragma once

// The runtime's printer object over the print system: one QPrinter for one
// print-server destination (or for PDF files when there is none), drawn on
// through the same Lienzo as the preview surfaces and reached by member name.
//
// The job opens on the first output (an empty Print included, and NewPage,
// so that a document of blank pages still has its pages); EndDoc hands it to
// the print server and the next output opens another. Each job is painted
// into a file of its own and only sent when it ends, so KillDoc can drop it.

#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QString>
#include <memory>
#include <optional>

#include "kaloimpresora/automatizacion.h"
#include "kaloimpresora/impresoras.h"
#include "target/lienzo.h"

class QPrinter;
class QPrinterInfo;

namespace kalo {

class ImpresoraDelSistema : public Objeto, public std::enable_shared_from_this<ImpresoraDelSistema> {
public:
    // A destination of the print server, by its queue as Qt lists it.
    static std::shared_ptr<ImpresoraDelSistema> DeDestino(const QPrinterInfo& destino);
    // The embedded default: every job becomes a PDF file in carpeta
    // (created when missing), named documento-AAAAMMDD-HHMMSS[-n].pdf.
    static std::shared_ptr<ImpresoraDelSistema> EnPdf(const QString& carpeta);

    // A job still open is ended and sent, as the runtime does when it exits.
    ~ImpresoraDelSistema() override;

    int32_t IdDeNombre(const QString& nombre) const override;
    Variant Invoca(int32_t dispid, Llamada tipo, std::span<Variant> argumentos) override;

    const QString& DeviceName() const { return nombre_; }
    bool EsPdf() const { return !carpetaPdf_.isEmpty(); }
    Lienzo& lienzo() { return *lienzo_; }
    // The device itself, for measuring or painting on it beside this object.
    QPrinter& Dispositivo() { return *impresora_; }

    // Job lifecycle.
    bool TrabajoAbierto() const { return pintor_.isActive(); }
    // Non-zero while a job is open.
    int32_t hDC() const { return TrabajoAbierto() ? hdc_ : 0; }
    // Page number within the open job (1 for the first); 0 with no job.
    int32_t Page() const { return TrabajoAbierto() ? pagina_ : 0; }
    void Print(const QString& texto, bool saltoDeLinea = true);
    void NewPage();
    void EndDoc();
    void KillDoc();
    // The PDF file the last ended job became (embedded default only).
    const QString& ArchivoDeSalida() const { return archivoDeSalida_; }
    // The print server's number for the last job sent; 0 before any.
    int32_t UltimoTrabajo() const { return ultimoTrabajo_; }

    // Sheet. Codes are the platform's paper codes (1 Letter, 5 Legal, 9 A4,
    // 256 user-defined); orientation 1 portrait, 2 landscape. Width and Height
    // are the whole sheet, in twips, as it lies (landscape swaps them).
    int16_t Copies() const { return copias_; }
    void Copies(int16_t copias);
    int16_t PaperSize() const;
    void PaperSize(int16_t codigo);
    int16_t Orientation() const;
    void Orientation(int16_t orientacion);
    int32_t Width() const;
    int32_t Height() const;
    void Width(int32_t twips);
    void Height(int32_t twips);

    // 1 transparent, 2 opaque: the device context's background mode, which is
    // what FontTransparent sets too.
    int16_t ModoDeFondo() const { return lienzo_->FontTransparent() ? 1 : 2; }
    void ModoDeFondo(int16_t modo);

    // The runtime's unit conversion between scale modes (0 user, that is the
    // current scale; 1 twips; 2 points; 3 pixels; 4 characters; 5 inches;
    // 6 mm; 7 cm; 8 HIMETRIC).
    double ScaleX(double valor, int16_t de, int16_t a) const;
    double ScaleY(double valor, int16_t de, int16_t a) const;

private:
    ImpresoraDelSistema(QString nombre, const QPrinterInfo* destino, QString carpetaPdf);

    QPainter* AbreTrabajo();
    void TerminaTrabajo(bool entrega);
    void Entrega(const QString& archivo);
    void AplicaHoja(const QPageSize& hoja, std::optional<QPageLayout::Orientation> orientacion = {});
    double TwipsPorUnidad(int16_t modo, bool horizontal) const;

    QString nombre_;
    QString carpetaPdf_;
    std::unique_ptr<QPrinter> impresora_;
    QPainter pintor_;
    std::unique_ptr<Lienzo> lienzo_;
    int16_t copias_ = 1;
    int32_t hdc_ = 0;
    int32_t pagina_ = 0;
    QString archivoDelTrabajo_;
    QString archivoDeSalida_;
    int32_t ultimoTrabajo_ = 0;
};

}  // namespace kalo
