#include "app/LiveMerge.h"

#include "app/BackgroundRelease.h"
#include "document/Document.h"
#include "model/JournalMerge.h"
#include "storage/JournalChanges.h"
#include "storage/NotebookPackage.h"
#include "storage/PosixFileSystem.h"

#include <QtConcurrent/QtConcurrentRun>

namespace quillery {

namespace {

QString qtPath(const std::filesystem::path& path) {
    return QString::fromStdString(path.string());
}

} // namespace

// What one round has running on a worker, and what it found.
struct LiveMerge::Work {
    QFutureWatcher<JournalChanges> reading;
    QFutureWatcher<std::optional<StorageError>> replaying;
    std::unique_ptr<Document> fresh;
    // The document's change count when the replay read the package: an edit since then is not
    // in the fresh tree, so that tree may not replace the open one.
    std::int64_t changeCountAtReplay = 0;
    bool replayed = false;
};

LiveMerge::LiveMerge(Document& document, Preferences& preferences, const PictureCodec& codec,
                     QObject* parent)
    : QObject(parent)
    , m_document(document)
    , m_preferences(preferences)
    , m_codec(codec)
    , m_watcher(qtPath(*document.fileLocation()))
    , m_work(std::make_unique<Work>()) {
    connect(&m_watcher, &PackageWatcher::journalsChanged, this, &LiveMerge::journalsChanged);
    connect(&m_work->reading, &QFutureWatcherBase::finished, this, &LiveMerge::readingDone);
    connect(&m_work->replaying, &QFutureWatcherBase::finished, this, &LiveMerge::replayDone);
}

// A worker still running holds its own copies and the fresh document; waiting keeps the fresh
// document from going before the worker is done with it.
LiveMerge::~LiveMerge() {
    for (QFutureWatcherBase* work : {static_cast<QFutureWatcherBase*>(&m_work->reading),
                                     static_cast<QFutureWatcherBase*>(&m_work->replaying)}) {
        if (work->isRunning())
            work->waitForFinished();
    }
}

bool LiveMerge::isBusy() const {
    return m_work->reading.isRunning() || m_work->replaying.isRunning() || m_work->replayed;
}

void LiveMerge::noteOwnSave() {
    m_watcher.markSeen({QString::fromStdString(journalFileName(m_document.clientIdentifier()))});
    // A save that found records of this installation it could not place asks for a replay.
    if (m_document.needsReplay() && !isBusy())
        startReplay();
}

void LiveMerge::setHeld(bool held) {
    m_held = held;
    if (!m_held && m_work->replayed)
        adoptReplay();
}

void LiveMerge::journalsChanged() {
    if (isBusy()) {
        m_pending = true;
        return;
    }
    startReading();
}

void LiveMerge::startReading() {
    m_pending = false;
    m_work->reading.setFuture(QtConcurrent::run([location = *m_document.fileLocation(),
                                                 identities = m_document.journalIdentities(),
                                                 marks = m_document.journalMarks()] {
        PosixFileSystem files;
        return readJournalChanges(location, identities, marks, files);
    }));
}

void LiveMerge::readingDone() {
    JournalChanges changes = m_work->reading.future().takeResult();
    if (changes.error) {
        emit journalDamaged(QString::fromStdString(changes.error->message));
        finishRound();
        return;
    }
    const bool replay =
        changes.needsReplay ||
        m_document.mergeRecords(std::move(changes.appended)) == Document::MergeOutcome::needsReplay;
    m_document.setJournalIdentities(std::move(changes.identities));
    if (replay) {
        startReplay();
        return;
    }
    finishRound();
}

void LiveMerge::startReplay() {
    m_work->changeCountAtReplay = m_document.changeCount();
    m_work->fresh = std::make_unique<Document>(m_preferences, &m_codec);
    // The fresh tree gets this document's own records too, saved or not.
    m_work->replaying.setFuture(
        QtConcurrent::run([fresh = m_work->fresh.get(), location = *m_document.fileLocation(),
                           &codec = m_codec, own = m_document.journalRecords()] {
            return package::replay(*fresh, location, codec, own);
        }));
}

void LiveMerge::replayDone() {
    if (const auto error = m_work->replaying.result()) {
        m_work->fresh.reset();
        emit journalDamaged(QString::fromStdString(error->message));
        finishRound();
        return;
    }
    m_work->replayed = true;
    if (!m_held)
        adoptReplay();
}

void LiveMerge::adoptReplay() {
    m_work->replayed = false;
    std::unique_ptr<Document> fresh = std::move(m_work->fresh);
    // An edit made while the replay ran is not in its tree: replay again, with it.
    if (m_document.changeCount() != m_work->changeCountAtReplay) {
        startReplay();
        return;
    }
    m_document.adoptReplayedTree(*fresh);
    // The fresh document now holds the tree that was shown, which nothing refers to any more.
    releaseInBackground(std::move(fresh));
    finishRound();
}

void LiveMerge::finishRound() {
    emit settled();
    if (m_pending)
        startReading();
}

} // namespace quillery
