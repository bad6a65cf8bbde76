#pragma once
// Theme pictures decoded once per file: a screen laid out again, or a button
// that stands on many screens, reuses the decoded picture for as long as the
// file keeps its time and size. A theme author who saves a picture anew sees
// it on the next layout without restarting.
#include <QPixmap>
#include <QString>

namespace mirel {

class ThemePictures {
public:
    /// The picture in the file, as QPixmap(path) would read it; a null
    /// picture when the file is missing or unreadable.
    static QPixmap get(const QString& path);
};

} // namespace mirel
