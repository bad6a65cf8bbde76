#pragma once

namespace mirel {

/// The main window's re-entry guard: a click that arrives while another is
/// being handled (a modal dialog is open, or a long loop lets events run) is
/// dropped, not queued.
class BusyFlag {
  public:
    bool busy() const { return m_busy; }

    /// Holds the flag for one command; check acquired() before going on.
    class Scope {
      public:
        explicit Scope(BusyFlag& flag) : m_flag(flag), m_acquired(!flag.m_busy) {
            if (m_acquired)
                m_flag.m_busy = true;
        }
        ~Scope() {
            if (m_acquired)
                m_flag.m_busy = false;
        }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        bool acquired() const { return m_acquired; }

      private:
        BusyFlag& m_flag;
        bool m_acquired;
    };

  private:
    bool m_busy = false;
};

} // namespace mirel
