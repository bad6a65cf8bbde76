#include "mail/transport/SendReceiveTexts.h"

#include "settings/IniHelpers.h"

namespace mirel {

SendReceiveTexts SendReceiveTexts::read(IniHelpers& ini, const QString& skinFile) {
    auto value = [&](const char* key) {
        return ini.ReadIniKey(kSection, key, skinFile) ? ini.IniValue : QByteArray();
    };
    SendReceiveTexts t;
    t.signedIn = value("textL");
    t.ready = value("textM");
    t.noMessages = value("textN");
    t.stored = value("textO");
    t.done = value("textP");
    t.outbox = value("textQ");
    t.receiving = value("textR");
    t.sent = value("textS");
    t.incomingSound = value("sndEmailIncomming");
    t.outgoingSound = value("sndEmailoutgoing");
    return t;
}

} // namespace mirel
