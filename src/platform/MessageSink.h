#pragma once
// The core never shows a window: message boxes and Yes/No questions go
// through this interface. The GUI shows real dialogs; tests record them.
#include <QString>

namespace mirel {

/// Where the core sends what the user is to be told or asked.
class MessageSink {
public:
    enum class Icon { None, Information, Warning, Critical, Question };
    virtual ~MessageSink() = default;
    virtual void showMessage(const QString& text, const QString& title, Icon icon) = 0;
    /// True for Yes.
    virtual bool askYesNo(const QString& text, const QString& title) = 0;
    enum class Answer { Yes, No, Cancel };
    /// A question that may also be called off; without a dialog of its own
    /// it is a Yes/No question.
    virtual Answer askYesNoCancel(const QString& text, const QString& title) {
        return askYesNo(text, title) ? Answer::Yes : Answer::No;
    }
};

/// The title every message box of the system carries.
inline const QString kMessageTitle = QStringLiteral("TORVEX Terminal");

} // namespace mirel
