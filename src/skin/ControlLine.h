#pragma once
// One control line of a skin section: a comma list whose first field is the
// kind and whose second is the name; what follows depends on the kind. The
// kind is matched exactly (upper case); anything unrecognised parses as
// Unknown and is skipped by the layout engine. A button's command is
// everything after the ninth comma, so it may itself contain commas.
#include <QByteArray>
#include <QList>
#include <optional>

namespace mirel {

enum class ControlKind {
    Unknown,
    Button,         // B, B0..B7, BA..BF
    Picture,        // P
    TextBox,        // T
    MultiLine,      // M
    Label,          // LB
    List,           // L
    MessageList,    // ML
    MessageView,    // MO
    MessageHeader,  // MH
    AttachmentList, // MA
    ModeButton,     // S0, S1
    CheckButton,    // S2..S8
    Special,        // SP
    Animation,      // A
};

/// A parsed control line; fields are numbered from 1 as in the skin (1 = kind).
struct ControlLine {
    QByteArray raw;
    QByteArray kind;
    QByteArray name;
    QList<QByteArray> fields;
    ControlKind kindCode = ControlKind::Unknown;
    /// B0..B7 -> 0..7, BA..BF -> 10..15, otherwise -1.
    int roleSlot = -1;
    /// S0/S1 -> 0..1 (mode buttons), S2..S8 -> 0..6 (check buttons), otherwise -1.
    int switchIndex = -1;

    /// Field n (1-based); empty when the line is shorter.
    QByteArray field(int n) const;
    /// Field n read by the leading-number rule (0 when absent or not numeric).
    long number(int n) const;
    /// Everything after the ninth comma (the button command), empty if none.
    QByteArray command() const;
    /// Fields from..from+2 as a colour.
    struct Colour {
        int r = 0, g = 0, b = 0;
    };
    Colour colour(int from) const;

    static constexpr int kPlacementField = 3; // left, top, width, height follow the name
};

ControlLine parseControlLine(QByteArrayView text);

/// True for the values the skin writes for "yes": "True" (any case) or a
/// non-zero number. "False" and 0 are false; anything else gives fallback.
/// Reads a skin or store switch: "True"/"False" in any case, or a number
/// (0 is false, anything else true). Other text is no boolean at all: the
/// caller keeps its default, as for a missing key.
std::optional<bool> parseSkinBool(QByteArrayView text);
bool parseSkinBool(QByteArrayView text, bool fallback);

} // namespace mirel
