#include "outline/OpmlWriter.h"

#include "outline/MarkupText.h"
#include "outline/OutlineSyntax.h"

#include <algorithm>

namespace quillery {

namespace {

// Indentation means nothing to a reader of XML; it stops early to keep deep files small.
constexpr std::size_t kMaxIndentedDepth = 32;

} // namespace

OpmlWriter::OpmlWriter(std::ostream& out)
    : m_out(out) {
    m_out.text() += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                    "<opml version=\"2.0\">\n"
                    "  <head/>\n"
                    "  <body>\n";
}

void OpmlWriter::appendIndent(std::size_t depth) {
    m_out.text().append(4 + 2 * std::min(depth, kMaxIndentedDepth), ' ');
}

// A note is written once the next one shows whether it has children.
void OpmlWriter::writePending(std::size_t nextDepth) {
    std::string& out = m_out.text();
    if (m_hasPending) {
        appendIndent(m_pendingDepth);
        out += "<outline";
        out += m_pendingAttributes;
        if (nextDepth > m_pendingDepth) {
            out += ">\n";
            m_open = m_pendingDepth + 1;
        } else {
            out += "/>\n";
        }
        m_hasPending = false;
    }
    for (; m_open > nextDepth; --m_open) {
        appendIndent(m_open - 1);
        out += "</outline>\n";
    }
}

void OpmlWriter::note(std::size_t depth, const NoteView& view) {
    writePending(depth);
    m_pendingAttributes = " text=\"";
    markup_text::appendEscaped(m_pendingAttributes, outline_syntax::noteLine(view, false));
    m_pendingAttributes += '"';
    if (view.url) {
        m_pendingAttributes += " url=\"";
        markup_text::appendEscaped(m_pendingAttributes, *view.url);
        m_pendingAttributes += '"';
    }
    m_pendingDepth = depth;
    m_hasPending = true;
    m_out.maybeFlush();
}

void OpmlWriter::finish() {
    writePending(0);
    m_out.text() += "  </body>\n</opml>\n";
    m_out.flush();
}

} // namespace quillery
