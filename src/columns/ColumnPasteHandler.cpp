#include "columns/ColumnPasteHandler.h"

#include "columns/PictureFromMimeData.h"
#include "columns/TransferredNotes.h"
#include "document/Document.h"
#include "outline/IndentedTextReader.h"
#include "outline/OutlineInsertion.h"

#include <QMimeData>
#include <QUrl>

#include <algorithm>
#include <memory>

namespace quillery {

namespace {

// A web address copied as plain text, as browsers copy one from their address bar, offered as an
// address. Only a lone http or https address counts; other text is pasted as text.
std::unique_ptr<QMimeData> addressCopiedAsText(const QString& text) {
    const QString trimmed = text.trimmed();
    if (std::ranges::any_of(trimmed, [](QChar c) { return c.isSpace(); }))
        return nullptr;
    const QUrl url(trimmed, QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty() ||
        (url.scheme() != QStringLiteral("http") && url.scheme() != QStringLiteral("https"))) {
        return nullptr;
    }
    auto address = std::make_unique<QMimeData>();
    address->setUrls({url});
    return address;
}

} // namespace

ColumnPasteHandler::ColumnPasteHandler(Document& document)
    : m_document(document)
    , m_drops(document) {
}

bool ColumnPasteHandler::canPaste(const QMimeData& data) {
    return data.hasFormat(QString::fromLatin1(kNotesMimeType)) || hasPictureType(data) ||
           data.hasUrls() || data.hasText();
}

ColumnDropHandler::Outcome ColumnPasteHandler::paste(const NodePtr& parentNote, std::size_t at,
                                                     const QMimeData& data) {
    if (!parentNote)
        return {};
    at = std::min(at, parentNote->children().size());
    if (const auto notes = TransferredNotes::in(data)) {
        const NodePtr added = notes->insert(m_document, *parentNote, at, "Paste");
        return {added != nullptr, added, nullptr};
    }
    const int row = static_cast<int>(at);
    if (hasPictureType(data) || data.hasUrls())
        return m_drops.pasteAt(parentNote, data, row);
    if (!data.hasText())
        return {};
    const QString text = data.text();
    if (const auto address = addressCopiedAsText(text))
        return m_drops.pasteAt(parentNote, *address, row);
    const NodePtr added = pasteText(*parentNote, at, text);
    return {added != nullptr, added, nullptr};
}

NodePtr ColumnPasteHandler::pasteText(const NotebookNode& parent, std::size_t at,
                                      const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return nullptr;
    Outline outline;
    if (!trimmed.contains(QLatin1Char('\n'))) {
        outline.add(0, trimmed.toStdString());
    } else {
        ParsedOutline parsed = readIndentedText(text.toStdString());
        if (parsed.error)
            return nullptr;
        outline = std::move(parsed.outline);
    }
    const std::vector<Identifier> added = insertOutline(m_document, outline, parent, at, "Paste");
    return added.empty() ? nullptr : m_document.node(added.front());
}

} // namespace quillery
