// Fuzz target: control lines and their placement. Each input line is one
// control line, placed on a few window sizes including an empty one.
#include "skin/ControlLine.h"
#include "skin/Placement.h"

#include <cstdint>
#include <cstdlib>

using namespace mirel;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    for (const QByteArray& text : bytes.split('\n')) {
        const ControlLine line = parseControlLine(text);
        if (line.raw != text || line.fields.isEmpty())
            std::abort();
        const QByteArray command = line.command();
        if (!command.isEmpty() && !text.endsWith(command))
            std::abort();
        const ControlLine::Colour c = line.colour(7);
        if (c.r < 0 || c.r > 255 || c.g < 0 || c.g > 255 || c.b < 0 || c.b > 255)
            std::abort();
        parseSkinBool(line.field(9), true);
        for (QSize window : {QSize(1024, 768), QSize(0, 0), QSize(1, 100000)}) {
            for (int first : {3, 4}) {
                const QRect r = placeControl(line, window, first);
                if (r.width() < 0 || r.height() < 0)
                    std::abort();
            }
        }
    }
    return 0;
}
