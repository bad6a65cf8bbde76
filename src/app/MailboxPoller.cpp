#include "app/MailboxPoller.h"

#include "app/ShellValues.h"
#include "platform/SettingsStore.h"

namespace mirel {

void MailboxPoller::reset() {
    // Each start clears the mailbox; a settings file that is clear already
    // is left alone rather than rewritten and flushed to disk twice.
    const auto clear = [this](const QByteArray& section, const QByteArray& key,
                              const QByteArray& value) {
        const QByteArray absent("\n"); // no stored value holds a line break
        if (m_store.GetSetting(kFamilyApp, section, key, absent) != value)
            m_store.SaveSetting(kFamilyApp, section, key, value);
    };
    clear(kExitSection, kExitKey, "0");
    clear(kVoiceSection, kVoiceKey, "");
}

MailboxPoller::Outcome MailboxPoller::poll(bool ready, const Buttons& buttons) {
    if (m_store.GetSetting(kFamilyApp, kExitSection, kExitKey, "0") == "1")
        return Outcome::ShutDown;
    if (!ready)
        return Outcome::Idle;
    const QByteArray value = m_store.GetSetting(kFamilyApp, kVoiceSection, kVoiceKey);
    if (value.isEmpty())
        return Outcome::Idle;
    bool clicked = false;
    for (int i = 1; i <= buttons.count(); ++i) {
        if (buttons.command(i) != value)
            continue;
        m_store.SaveSetting(kFamilyApp, kVoiceSection, kVoiceKey, "");
        clicked = true;
        buttons.click(i);
    }
    return clicked ? Outcome::Clicked : Outcome::Unmatched;
}

} // namespace mirel
