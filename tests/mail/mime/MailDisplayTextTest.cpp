#include "mail/mime/MailDisplayText.h"
#include "MailStoreFixture.h"

#include <QJsonArray>
#include <gtest/gtest.h>

using namespace mirel;
using mirel::test::jsonTestData;

namespace {

QByteArray bytes(const QJsonValue& v) {
    return v.toString().toLatin1();
}

// Catches an encoded word left undecoded or decoded in the wrong charset, raw
// 8-bit text read in neither UTF-8 nor the files' code page, and a body read
// in another charset than its part declares (a mislabelled or unknown one
// falls back instead of showing garbage).
TEST(MailDisplayTextTest, HeadersAndBodiesInTheirCharsets) {
    const QJsonObject rows = jsonTestData("mail/mime-rules.json");
    for (const QJsonValue r : rows["decodeHeader"].toArray())
        EXPECT_EQ(MailDisplayText::decodeHeader(bytes(r[0])), r[1].toString())
            << bytes(r[0]).constData();
    for (const QJsonValue r : rows["charsetOf"].toArray())
        EXPECT_EQ(MailDisplayText::charsetOf(bytes(r[0])), bytes(r[1])) << bytes(r[0]).constData();
    for (const QJsonValue r : rows["decodeBody"].toArray())
        EXPECT_EQ(MailDisplayText::decodeBody(bytes(r[0]), bytes(r[1])), r[2].toString())
            << bytes(r[1]).constData();
}

} // namespace
