#pragma once
#include <QAbstractButton>
#include <QPixmap>
#include <QString>

namespace mirel {

/// A skin picture button: paints its picture, or its lit picture while lit.
/// A real pressable button for assistive technology, named after its command.
class SkinButton : public QAbstractButton {
    Q_OBJECT
  public:
    SkinButton(int index, QWidget* parent = nullptr);

    int index() const { return m_index; }
    void setPicture(const QString& path);
    QString picturePath() const { return m_path; }
    /// Shows the lit picture ("a" before the extension) or the normal one.
    void setLit(bool lit);
    bool isLit() const { return m_litShown; }
    /// Hover state kept by the hover pass (entering plays the sound once).
    bool hovered = false;

    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent*) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    int m_index;
    QString m_path;
    QPixmap m_normal;
    QPixmap m_lit;
    bool m_litLoaded = false;
    bool m_litShown = false;
};

} // namespace mirel
