#pragma once
// A window whose controls come from skin sections. It owns the skin state,
// the controls the layout engine created (in creation order, so a screen is
// taken down from the last one back), and the fixed controls that skin lines
// only place: mode and check buttons and the parts of the mail screens. The
// fixed controls start as plain placeholders; the owning window may install
// its own widget in their place before they are placed.
#include "skin/SkinState.h"
#include "ui/AnimatedPicture.h"
#include "ui/SkinButton.h"

#include <QCheckBox>
#include <QColor>
#include <QLabel>
#include <QLineEdit>
#include <QList>
#include <QListWidget>
#include <QMap>
#include <QPixmap>
#include <QPointer>
#include <QRadioButton>
#include <QTextEdit>
#include <QTimer>
#include <QWidget>
#include <array>

namespace mirel {

class SoundPlayer;

/// Fixed controls of the mail screens placed by ML, MO and MA lines.
enum class PlacedPart {
    MessageList,
    MessageBody,
    HtmlView,
    HtmlFrame,
    AttachmentList,
    MonthPicture,
    MessageHeader
};

/// The kinds of control the layout engine creates (and clearing removes).
enum class CreatedKind { Button, Picture, TextBox, MultiLine, Label, List, Animation };

/// Base of the main window and of every skinned dialog.
class SkinHost : public QWidget {
    Q_OBJECT
  public:
    explicit SkinHost(QWidget* parent = nullptr, Qt::WindowFlags flags = {});
    ~SkinHost() override;

    SkinState& state() { return m_state; }
    const SkinState& state() const { return m_state; }

    /// Sounds for the hover pass; may be null (silent).
    void setSoundPlayer(SoundPlayer* sounds) { m_sounds = sounds; }
    SoundPlayer* soundPlayer() const { return m_sounds; }

    // Created controls, 1-based per kind; null when out of range.
    SkinButton* button(int i) const;
    QLabel* picture(int i) const;
    QLineEdit* textBox(int i) const;
    QTextEdit* multiLine(int i) const;
    QLabel* label(int i) const;
    QListWidget* list(int i) const;
    AnimatedPicture* animation(int i) const;
    /// The latest list laid out under a name other than "overview".
    QListWidget* generalList() const;
    /// The list laid out under the name "overview".
    QListWidget* overviewList() const;
    int controlCount() const { return int(m_controls.size()); }
    QWidget* control(int i) const; // 1-based, creation order

    // Fixed controls.
    QRadioButton* modeButton(int i) const; // 0..1
    QCheckBox* checkButton(int i) const;   // 0..6
    QWidget* placed(PlacedPart part);      // created on first use
    QWidget* placedIfAny(PlacedPart part) const { return m_placed.value(part); }
    void setPlaced(PlacedPart part, QWidget* widget);
    /// SP controls by key: "emailaccounts", "emailbut3", "emailtextcc", ...
    QWidget* special(const QByteArray& key); // created on first use
    void setSpecial(const QByteArray& key, QWidget* widget);
    bool hasSpecial(const QByteArray& key) const { return m_special.contains(key); }

    void setBackgroundColour(const QColor& colour);
    void setBackgroundPicture(const QPixmap& picture);
    QPixmap backgroundPicture() const { return m_background; }

    /// Starts the 100 ms hover pass.
    void startHoverTimer();
    QTimer& hoverTimer() { return m_hoverTimer; }

    /// Makes the button in priority slot n (0..7) the selected one, lit,
    /// and shows the previously selected one normally; no button in the slot
    /// selects none.
    void selectPriority(int slot);
    /// Gives button i another picture (table and widget); used by screens
    /// that swap the pictures of role buttons.
    void setButtonPicture(int index, const QString& path);

    /// A skin button was clicked (index into the button table).
    virtual void buttonClicked(int index);
    /// Mouse released over the general / overview list.
    virtual void generalListReleased() {}
    virtual void overviewListReleased() {}
    /// A mode button was clicked.
    virtual void modeButtonClicked(int index) {}

    // Used by the layout engine.
    void adoptControl(QWidget* control, CreatedKind tag);
    void removeLastControl();
    /// Drops per-kind entries beyond the (restored) table counts.
    void trimToTables();
    void setOverviewList(QListWidget* list) { m_overview = list; }
    /// Makes mouse movement and clicks over w run the hover pass.
    void watchHover(QWidget* w);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    void runHover();
    void hoverAt(QWidget* receiver, const QMouseEvent* event);

    SkinState m_state;
    SoundPlayer* m_sounds = nullptr;
    QList<QPointer<QWidget>> m_controls;
    QList<CreatedKind> m_tags;
    QList<QPointer<SkinButton>> m_buttons;
    QList<QPointer<QLabel>> m_pictures;
    QList<QPointer<QLineEdit>> m_textBoxes;
    QList<QPointer<QTextEdit>> m_multiLines;
    QList<QPointer<QLabel>> m_labels;
    QList<QPointer<QListWidget>> m_lists;
    QList<QPointer<AnimatedPicture>> m_animations;
    QPointer<QListWidget> m_overview;
    std::array<QRadioButton*, 2> m_modeButtons{};
    std::array<QCheckBox*, 7> m_checkButtons{};
    QMap<PlacedPart, QPointer<QWidget>> m_placed;
    QMap<QByteArray, QPointer<QWidget>> m_special;
    QPixmap m_background;
    QTimer m_hoverTimer;
};

} // namespace mirel
