#include "ui/SkinButton.h"

#include "skin/SkinState.h"
#include "ui/ThemePictures.h"

#include <QKeyEvent>
#include <QPainter>

namespace mirel {

SkinButton::SkinButton(int index, QWidget* parent) : QAbstractButton(parent), m_index(index) {
    // Tab reaches it; a mouse click leaves the focus where the typing is.
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
}

void SkinButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        animateClick();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

void SkinButton::setPicture(const QString& path) {
    m_path = path;
    m_normal = ThemePictures::get(path);
    // The lit picture is loaded on first need: most buttons are never lit
    // during a short screen visit, and a missing one must not cost a disk
    // probe per button while a screen builds up.
    m_lit = QPixmap();
    m_litLoaded = false;
    update();
}

void SkinButton::setLit(bool lit) {
    if (lit && !m_litLoaded) {
        m_lit = ThemePictures::get(SkinState::litPicture(m_path));
        m_litLoaded = true;
    }
    if (m_litShown != lit) {
        m_litShown = lit;
        update();
    }
}

QSize SkinButton::sizeHint() const {
    return m_normal.isNull() ? QSize(16, 16) : m_normal.size();
}

void SkinButton::paintEvent(QPaintEvent*) {
    QPainter p(this);
    const QPixmap& pic = m_litShown && !m_lit.isNull() ? m_lit : m_normal;
    if (!pic.isNull())
        p.drawPixmap(rect(), pic);
    if (hasFocus()) {
        // Drawn over any picture: a light dashed frame inside a dark one.
        p.setPen(QPen(Qt::black, 1));
        p.drawRect(rect().adjusted(0, 0, -1, -1));
        p.setPen(QPen(QColor(255, 255, 255, 220), 1, Qt::DashLine));
        p.drawRect(rect().adjusted(1, 1, -2, -2));
    }
}

} // namespace mirel
