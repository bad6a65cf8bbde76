#pragma once
// Logbook: one file per entry in the logbook folder, named by the fourteen
// digits of the entry's stamp + ".log"; the file holds the text only. The
// stamp shown to the user is "YYYYMM.DD HH:NN:SS". The hidden list holds
// "file name<1>first line" (so it is in time order); the visible list shows
// it newest first, two rows per entry, both carrying the entry's position.
#include "organiser/OrganiserContext.h"
#include "organiser/OrganiserState.h"

namespace mirel {

/// The logbook screen's operations, on values. EditBoxes: stamp = the
/// label, body = the text box, title = the search text.
class Logbook {
public:
    explicit Logbook(const OrganiserContext& ctx) : m_ctx(ctx) {}

    /// Lists the entries whose text holds search (all for an empty one).
    void load(OrganiserState& st, const QByteArray& search) const;
    void show(const OrganiserState& st, int i, EditBoxes& boxes) const;
    void add(OrganiserState& st, EditBoxes& boxes) const;
    void cancel(const OrganiserState& st, EditBoxes& boxes) const { show(st, st.selection, boxes); }
    void click(OrganiserState& st, int row, EditBoxes& boxes) const;
    void search(OrganiserState& st, EditBoxes& boxes) const;
    void showAll(OrganiserState& st, EditBoxes& boxes) const;
    bool save(OrganiserState& st, EditBoxes& boxes) const;
    bool remove(OrganiserState& st, EditBoxes& boxes) const;

    /// "YYYYMM.DD HH:NN:SS" from fourteen digits, and back.
    static QByteArray stampFromDigits(const QByteArray& digits);
    static QByteArray digitsFromStamp(const QByteArray& stamp);

private:
    QString folder() const { return m_ctx.itemFolder("Logbook"); }
    QByteArray stampNow() const { return stampFromDigits(m_ctx.stampNow()); }
    void reset(OrganiserState& st, EditBoxes& boxes) const;
    const OrganiserContext& m_ctx;
};

} // namespace mirel
