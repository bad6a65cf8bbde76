#pragma once
// The numbered control lines "01", "02", ... of a skin section. Reading stops
// at the first missing number; each line found may be replaced by the same
// key of the override file (the skin file with its last three characters
// replaced by "ini"). A key that only the override file has is never read.
#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

namespace mirel {

class IniHelpers;

struct NumberedLine {
    int keyNumber = 0;
    QByteArray text;
};

/// Reads control lines of a section with the override file applied.
class SkinLines {
public:
    explicit SkinLines(IniHelpers& ini) : m_ini(ini) {}

    QList<NumberedLine> read(QByteArrayView section, const QString& skinFile) const;
    /// One line by key number: the override file first, then the skin.
    std::optional<QByteArray> line(QByteArrayView section, int keyNumber,
                                   const QString& skinFile) const;

    static QString overrideFileFor(const QString& skinFile);
    /// "01".."99", then plain decimal for larger numbers.
    static QByteArray keyName(int keyNumber);

private:
    // Keys are three digits at most in practice; the bound only guards
    // against a generated file with an endless run of numbers.
    static constexpr int kMaxKey = 10000;
    // Used when a file cannot be read whole: each failing read reports itself.
    QList<NumberedLine> readKeyByKey(QByteArrayView section, const QString& skinFile) const;

    IniHelpers& m_ini;
};

} // namespace mirel
