#include "skin/ControlLine.h"

#include "settings/CommaList.h"

namespace mirel {
namespace {

struct KindInfo {
    ControlKind code;
    int roleSlot;
    int switchIndex;
};

KindInfo classify(const QByteArray& kind) {
    if (kind == "B")
        return {ControlKind::Button, -1, -1};
    if (kind.size() == 2 && kind[0] == 'B') {
        const char c = kind[1];
        if (c >= '0' && c <= '7')
            return {ControlKind::Button, c - '0', -1};
        if (c >= 'A' && c <= 'F')
            return {ControlKind::Button, 10 + (c - 'A'), -1};
    }
    if (kind.size() == 2 && kind[0] == 'S' && kind[1] >= '0' && kind[1] <= '8') {
        const int n = kind[1] - '0';
        return n < 2 ? KindInfo{ControlKind::ModeButton, -1, n}
                     : KindInfo{ControlKind::CheckButton, -1, n - 2};
    }
    if (kind == "P")
        return {ControlKind::Picture, -1, -1};
    if (kind == "T")
        return {ControlKind::TextBox, -1, -1};
    if (kind == "M")
        return {ControlKind::MultiLine, -1, -1};
    if (kind == "LB")
        return {ControlKind::Label, -1, -1};
    if (kind == "L")
        return {ControlKind::List, -1, -1};
    if (kind == "ML")
        return {ControlKind::MessageList, -1, -1};
    if (kind == "MO")
        return {ControlKind::MessageView, -1, -1};
    if (kind == "MH")
        return {ControlKind::MessageHeader, -1, -1};
    if (kind == "MA")
        return {ControlKind::AttachmentList, -1, -1};
    if (kind == "SP")
        return {ControlKind::Special, -1, -1};
    if (kind == "A")
        return {ControlKind::Animation, -1, -1};
    return {ControlKind::Unknown, -1, -1};
}

} // namespace

QByteArray ControlLine::field(int n) const {
    return n >= 1 && n <= fields.size() ? fields[n - 1] : QByteArray();
}

long ControlLine::number(int n) const {
    return leadingNumber(field(n));
}

QByteArray ControlLine::command() const {
    qsizetype pos = -1;
    for (int commas = 0; commas < 9; ++commas) {
        pos = raw.indexOf(',', pos + 1);
        if (pos < 0)
            return {};
    }
    return raw.mid(pos + 1);
}

ControlLine::Colour ControlLine::colour(int from) const {
    auto channel = [this](int n) { return int(qBound(0L, number(n), 255L)); };
    return {channel(from), channel(from + 1), channel(from + 2)};
}

ControlLine parseControlLine(QByteArrayView text) {
    ControlLine line;
    line.raw = text.toByteArray();
    line.fields = splitCommaList(text);
    line.kind = line.field(1);
    line.name = line.field(2);
    const KindInfo info = classify(line.kind);
    line.kindCode = info.code;
    line.roleSlot = info.roleSlot;
    line.switchIndex = info.switchIndex;
    return line;
}

std::optional<bool> parseSkinBool(QByteArrayView text) {
    const QByteArray t = text.toByteArray().trimmed().toLower();
    if (t == "true")
        return true;
    if (t == "false")
        return false;
    bool ok = false;
    const double v = t.toDouble(&ok);
    if (!ok)
        return std::nullopt;
    return v != 0;
}

bool parseSkinBool(QByteArrayView text, bool fallback) {
    return parseSkinBool(text).value_or(fallback);
}

} // namespace mirel
