#pragma once
// Per-window bookkeeping of the layout engine. Buttons are indexed 1..count;
// role slots and the by-command records hold button indexes (0 = none).
// Before a screen section is laid out the whole table set is recorded, so
// clearing the screen returns to exactly that state: nothing created for the
// screen survives in the counters, the button table or the slots.
#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <array>

namespace mirel {

/// What the layout engine records per skin button.
struct SkinButtonEntry {
    QString picturePath;
    QByteArray hoverSound;
    QByteArray clickSound;
    int keyNumber = 0;
    QByteArray command;
};

/// Counters, tables and slots of one window.
struct SkinTables {
    QList<SkinButtonEntry> buttons;
    int pictures = 0;
    int textBoxes = 0;
    int multiLines = 0;
    int labels = 0;
    int lists = 0;
    int animations = 0;
    int animationFrames = 0;
    /// Number of created controls (the host's control list length).
    int controls = 0;
    /// B0..B7: the agenda editor's priority buttons.
    std::array<int, 8> prioritySlots{};
    /// BA..BF: buttons the agenda editor enables by item mode.
    std::array<int, 6> modeSlots{};
    /// BD additionally marks the to-do screen's done button.
    int doneButton = 0;
    /// Lower-case mail command ("emailreply", ...) -> button index.
    QMap<QByteArray, int> mailButtons;
    /// Agenda editor display labels ("DAY", "SHOUR", ...) -> label index.
    QMap<QByteArray, int> agendaLabels;
    /// Index of the "themepic" picture, 0 = none.
    int themePicture = 0;
};

/// The skin state of one window: its live tables, the recorded snapshot and flags.
class SkinState {
  public:
    SkinTables tables;
    SkinTables recorded;
    int defaultButtonCount = 0;
    QByteArray currentScreen;
    bool closing = false;
    /// The selected priority button (index), 0 = none; the hover pass leaves it lit.
    int selectedPriorityButton = 0;

    int buttonCount() const { return int(tables.buttons.size()); }
    /// Button i (1-based); a default entry when out of range.
    const SkinButtonEntry& button(int index) const;
    /// Appends a button and returns its index.
    int addButton(SkinButtonEntry entry);
    /// Records the role of button index for the kind's slot (see ControlLine::roleSlot).
    void assignRole(int roleSlot, int index);
    /// Records buttons whose command the mail screen shows or hides.
    void noteMailCommand(const QByteArray& command, int index);
    static bool isMailCommand(QByteArrayView lowerCommand);

    /// Starting a "DEFAULT" section: every counter starts from zero.
    void resetAll();
    /// Remembers the current tables as the state to return to.
    void record() { recorded = tables; }
    /// Returns to the recorded state (screen name cleared, no priority selected).
    void restore();

    /// The lit picture: "a" inserted before the last four characters.
    static QString litPicture(const QString& picture);

  private:
    static const SkinButtonEntry kNoButton;
};

} // namespace mirel
