#include "skin/SkinState.h"

namespace mirel {

const SkinButtonEntry SkinState::kNoButton{};

const SkinButtonEntry& SkinState::button(int index) const {
    if (index < 1 || index > tables.buttons.size())
        return kNoButton;
    return tables.buttons[index - 1];
}

int SkinState::addButton(SkinButtonEntry entry) {
    tables.buttons.append(std::move(entry));
    return buttonCount();
}

void SkinState::assignRole(int roleSlot, int index) {
    if (roleSlot >= 0 && roleSlot < 8)
        tables.prioritySlots[roleSlot] = index;
    else if (roleSlot >= 10 && roleSlot < 16) {
        tables.modeSlots[roleSlot - 10] = index;
        if (roleSlot == 13) // BD
            tables.doneButton = index;
    }
}

bool SkinState::isMailCommand(QByteArrayView lower) {
    static const char* const kCommands[] = {"emailreply",  "emailforward", "emailmove",
                                            "emailprint",  "emaildelete",  "emailsource",
                                            "emailaddress"};
    for (const char* c : kCommands)
        if (lower == QByteArrayView(c))
            return true;
    return false;
}

void SkinState::noteMailCommand(const QByteArray& command, int index) {
    const QByteArray lower = command.toLower();
    if (isMailCommand(lower))
        tables.mailButtons[lower] = index;
}

void SkinState::resetAll() {
    tables = SkinTables{};
    recorded = SkinTables{};
    defaultButtonCount = 0;
    selectedPriorityButton = 0;
}

void SkinState::restore() {
    tables = recorded;
    currentScreen.clear();
    selectedPriorityButton = 0;
}

QString SkinState::litPicture(const QString& picture) {
    if (picture.size() < 4)
        return picture + QLatin1Char('a');
    return picture.left(picture.size() - 4) + QLatin1Char('a') + picture.right(4);
}

} // namespace mirel
