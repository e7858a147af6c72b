#include <QPaintEvent>
#include <QPainter>
#include <QResizeEvent>

#include "kaloimpresora/superficies.h"
#include "runtime/aplicacion.h"
#include "target/superficie_imagen.h"

namespace kalo {

CajaDeImagen::CajaDeImagen(QWidget* padre) : QWidget(padre) {
    superficie_ = std::make_shared<SuperficieDeImagen>(size(), logicalDpiY());
    superficie_->EnlazaCaja(this);
    // Everything is painted from the backing image; nothing shows through.
    setAttribute(Qt::WA_OpaquePaintEvent);
}

// The object may outlive the widget in the host's hands; it goes on as a
// headless surface.
CajaDeImagen::~CajaDeImagen() { superficie_->EnlazaCaja(nullptr); }

std::shared_ptr<Objeto> CajaDeImagen::objeto() const { return superficie_; }

QImage CajaDeImagen::imagen() const { return superficie_->lienzo().Imagen(); }

void CajaDeImagen::paintEvent(QPaintEvent* evento) {
    const QImage& imagen = superficie_->lienzo().Imagen();
    QPainter p(this);
    p.drawImage(evento->rect(), imagen, evento->rect());
}

void CajaDeImagen::resizeEvent(QResizeEvent* evento) {
    superficie_->lienzo().Redimensiona(evento->size());
    QWidget::resizeEvent(evento);
}

}  // namespace kalo
