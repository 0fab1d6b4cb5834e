#pragma once

#include "app/PackageWatcher.h"

#include <QFutureWatcher>
#include <QObject>

#include <memory>

namespace quillery {

class Document;
class PictureCodec;
class Preferences;

// Keeps an open notebook in step with its package while other writers change it: another
// process of this installation, or a sync tool bringing another machine's journal. Changed
// journals are read and parsed on a worker thread; records later than everything shown join the
// tree with the ordinary change notifications, and anything else makes a worker replay the
// package into a fresh document whose tree then takes the place of the open one (the document
// announces it, and the window rebuilds its columns by identifier). Only one read or replay
// runs at a time; changes that come meanwhile are looked at when it ends.
class LiveMerge : public QObject {
    Q_OBJECT

public:
    // All three must outlive this object; the document must have a location. Replays read into
    // documents made with the preferences and codec.
    LiveMerge(Document& document, Preferences& preferences, const PictureCodec& codec,
              QObject* parent = nullptr);
    ~LiveMerge() override;

    PackageWatcher& watcher() { return m_watcher; }
    // This process wrote its own journal: that change is not news.
    void noteOwnSave();
    // While held (a note editor is open) a replayed tree waits rather than replace the nodes
    // under the editor; releasing applies it.
    void setHeld(bool held);
    bool isBusy() const;

signals:
    // A journal could not be read or arrived damaged (the reason names it); the notebook stays
    // as it was.
    void journalDamaged(const QString& reason);
    // A round of reading, and merging or replaying, is over (tests and benchmarks wait for it).
    void settled();

private:
    void journalsChanged();
    void startReading();
    void readingDone();
    void startReplay();
    void replayDone();
    void adoptReplay();
    void finishRound();

    Document& m_document;
    Preferences& m_preferences;
    const PictureCodec& m_codec;
    PackageWatcher m_watcher;
    bool m_pending = false;
    bool m_held = false;
    struct Work;
    std::unique_ptr<Work> m_work;
};

} // namespace quillery
