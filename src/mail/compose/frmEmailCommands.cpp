#include "mail/compose/frmEmailCommands.h"

#include "mail/compose/ForwardAttachments.h"
#include "mail/compose/frmEmail.h"
#include "mail/compose/frmTo.h"
#include "mail/mime/MailDisplayText.h"
#include "mail/store/MailStore.h"
#include "mail/view/EmailScreen.h"
#include "platform/Cp1252.h"
#include "platform/MessageSink.h"
#include "settings/Folders.h"
#include "settings/IniHelpers.h"
#include "ui/LayoutEngine.h"

namespace mirel {

frmEmailCommands::frmEmailCommands(const LayoutEngine& engine, const EmailAccountList& accounts,
                                   MailStore& store, MessageSink& messages, QWidget* parent)
    : m_engine(engine), m_accounts(accounts), m_store(store), m_messages(messages),
      m_parent(parent) {}

QString frmEmailCommands::tempFolder() const {
    return m_engine.context().folders.path(QStringLiteral("\\EmailTemp"));
}

bool frmEmailCommands::accountCheck() {
    if (!ComposeRules::usableAccounts(m_accounts).isEmpty())
        return true;
    m_messages.showMessage(ComposeRules::kNoAccount, kMessageTitle, MessageSink::Icon::Information);
    return false;
}

void frmEmailCommands::EmailNew() {
    if (!accountCheck())
        return;
    m_presets.clearForNew();
    openCompose();
}

void frmEmailCommands::EmailReply() {
    if (!m_screen || m_screen->view().shownRow() < 0 || !accountCheck())
        return;
    m_presets.lstForward.clear();
    if (presetFromShown())
        openCompose();
}

void frmEmailCommands::EmailForward() {
    if (!m_screen || m_screen->view().shownRow() < 0 || !accountCheck())
        return;
    m_presets.lstForward.clear();
    const MessageView& view = m_screen->view();
    const QString temp = tempFolder();
    const auto list = ForwardAttachments::PrepareForwardAttachments(m_store, view.currentFolder(),
                                                                    view.current().id, temp);
    if (!list)
        return;
    m_presets.lstForward = *list;
    if (presetFromShown())
        openCompose();
    ForwardAttachments::emptyFolder(temp);
    m_presets.lstForward.clear();
}

bool frmEmailCommands::presetFromShown() {
    const MessageView& view = m_screen->view();
    const ShownMessage& shown = view.current();
    const std::optional<MessageRow> row = m_store.readMessageRow(view.currentFolder(), shown.id);
    if (!row)
        return false;
    IniHelpers& ini = m_engine.context().ini;
    const QString skin = m_engine.context().folders.themeFile(QStringLiteral("terminal.skn"));
    auto text = [&](const char* key) {
        ini.ReadIniKey(frmEmail::kSection, key, skin);
        return ini.IniValue;
    };
    const QuoteTexts texts{text("TextReply"), text("TextFrom"), text("TextTo"), text("TextDate"),
                           text("TextSubject")};
    // Header values may carry encoded words; the quote shows them decoded,
    // as text, never as markup.
    auto html = [](const QByteArray& v) {
        return ComposeRules::htmlText(MailDisplayText::decodeHeader(v));
    };
    const AnsweredMessage quoted{html(shown.from), html(shown.to), html(shown.date),
                                 html(shown.subject)};
    ComposeRules::presetReply(m_presets, texts, quoted, row->html, row->text);
    m_presets.charset = shown.charset.isEmpty() ? QByteArray("windows-1252") : shown.charset;
    m_presets.to = Cp1252::fromUnicode(MailDisplayText::decodeHeader(shown.from));
    m_presets.subject = ComposeRules::replySubject(
        Cp1252::fromUnicode(MailDisplayText::decodeHeader(shown.subject)));
    return true;
}

void frmEmailCommands::openCompose() {
    frmEmail compose(m_engine, m_accounts, m_presets, m_store, m_messages, m_parent);
    compose.setPicker([this, &compose] {
        frmTo picker(m_engine, &compose);
        picker.exec();
        return picker.result();
    });
    if (m_prepare)
        m_prepare(compose);
    compose.exec();
}

} // namespace mirel
