#include "outline/MarkdownOutlineReader.h"

#include "outline/OutlineSyntax.h"

#include <algorithm>
#include <md4c.h>
#include <vector>

namespace quillery {

namespace {

using namespace outline_syntax;

// Lines of a note's own text, by the offsets of the first and last text md4c reported in them.
struct Segment {
    std::size_t first;
    std::size_t last;
    bool fenceBefore = false; // a fenced code block opens the segment: take its fence line too
    std::size_t nextNote = 0; // the first note that md4c started after this segment's last text
};

struct PendingNote {
    std::size_t depth;
    bool isItem;
    bool isHeading;
    std::vector<Segment> segments;
    std::size_t notesAtLastText = 0; // a note added since the last text starts a new segment
    bool fenceOpening = false;
};

std::string_view trimmedStart(std::string_view line) {
    const std::size_t start = line.find_first_not_of(" \t>");
    return start == std::string_view::npos ? std::string_view() : line.substr(start);
}

bool isFenceLine(std::string_view line) {
    line = trimmedStart(line);
    return line.starts_with("```") || line.starts_with("~~~");
}

// Where the text starts on a block's first line: after quote markers, list markers and, for a
// heading, its hashes.
std::size_t prefixLength(std::string_view line, bool heading) {
    std::size_t i = 0;
    for (;;) {
        while (i < line.size() && (line[i] == ' ' || line[i] == '\t'))
            ++i;
        if (i < line.size() && line[i] == '>') {
            ++i;
            continue;
        }
        if (const std::size_t marker = listMarkerLength(line.substr(i))) {
            i += marker;
            continue;
        }
        break;
    }
    if (heading && i < line.size() && line[i] == '#') {
        while (i < line.size() && line[i] == '#')
            ++i;
        while (i < line.size() && (line[i] == ' ' || line[i] == '\t'))
            ++i;
    }
    return i;
}

class OutlineBuilder {
public:
    explicit OutlineBuilder(std::string_view source)
        : m_source(source) {
        m_lineStarts.push_back(0);
        // Lines end as md4c ends them: at "\n", "\r\n" or a lone "\r".
        for (std::size_t i = 0; i < source.size(); ++i)
            if (source[i] == '\n' ||
                (source[i] == '\r' && (i + 1 == source.size() || source[i + 1] != '\n')))
                m_lineStarts.push_back(i + 1);
    }

    int enterBlock(MD_BLOCKTYPE type, void* detail) {
        long note = -1;
        if (type == MD_BLOCK_LI) {
            const std::size_t depth =
                m_itemDepth > 0 ? m_notes[m_noteStack.back()].depth + 1 : headingBase();
            note = addNote(depth, true, false);
            ++m_itemDepth;
        } else if (type == MD_BLOCK_H && m_itemDepth == 0) {
            const unsigned level = static_cast<MD_BLOCK_H_DETAIL*>(detail)->level;
            while (!m_headings.empty() && m_headings.back().level >= level)
                m_headings.pop_back();
            const std::size_t depth = headingBase();
            note = addNote(depth, false, true);
            m_headings.push_back({level, m_notes[static_cast<std::size_t>(note)].depth});
        } else if (m_noteStack.empty() && (type == MD_BLOCK_P || type == MD_BLOCK_CODE ||
                                           type == MD_BLOCK_HTML || type == MD_BLOCK_TABLE)) {
            note = addNote(headingBase(), false, false);
        }
        m_frames.push_back({type, note >= 0});
        if (note >= 0)
            m_noteStack.push_back(static_cast<std::size_t>(note));
        if (type == MD_BLOCK_CODE && static_cast<MD_BLOCK_CODE_DETAIL*>(detail)->fence_char &&
            !m_noteStack.empty())
            m_notes[m_noteStack.back()].fenceOpening = true;
        return 0;
    }

    int leaveBlock(MD_BLOCKTYPE type) {
        if (type == MD_BLOCK_CODE && !m_noteStack.empty())
            m_notes[m_noteStack.back()].fenceOpening = false;
        if (type == MD_BLOCK_LI)
            --m_itemDepth;
        if (m_frames.back().hasNote)
            m_noteStack.pop_back();
        m_frames.pop_back();
        return 0;
    }

    int text(const MD_CHAR* text, MD_SIZE size) {
        // Texts md4c made up (line breaks, replacement characters) are not in the source.
        if (size == 0 || m_noteStack.empty() || text < m_source.data() ||
            text + size > m_source.data() + m_source.size())
            return 0;
        const std::size_t first = static_cast<std::size_t>(text - m_source.data());
        const std::size_t last = first + size - 1;
        PendingNote& note = m_notes[m_noteStack.back()];
        if (note.segments.empty() || note.notesAtLastText != m_notes.size()) {
            note.segments.push_back({first, last, note.fenceOpening, 0});
            note.fenceOpening = false;
        } else {
            note.segments.back().last = std::max(note.segments.back().last, last);
        }
        note.notesAtLastText = m_notes.size();
        note.segments.back().nextNote = m_notes.size();
        return 0;
    }

    Outline finish() const {
        // Where each note starts, and for each note the start of the first note from it on whose
        // start is known (notes without text have none): the lines of a note's text end there.
        constexpr std::size_t kUnknown = static_cast<std::size_t>(-1);
        std::vector<std::size_t> nextStart(m_notes.size() + 1, kUnknown);
        for (std::size_t i = m_notes.size(); i-- > 0;) {
            const std::size_t start = startLine(m_notes[i]);
            nextStart[i] = start != kUnknown ? start : nextStart[i + 1];
        }
        Outline outline;
        // Lines before this one belong to the notes before; an item without text (an empty one,
        // one holding only "[](target)" or an empty code span) starts at the first marker line
        // after them.
        std::size_t unclaimed = 0;
        PendingNote located;
        for (std::size_t i = 0; i < m_notes.size(); ++i) {
            const PendingNote* note = &m_notes[i];
            if (note->segments.empty() && note->isItem) {
                located = *note;
                locateByMarker(located, i, unclaimed,
                               std::min(nextStart[i + 1], m_lineStarts.size()));
                note = &located;
            }
            if (!note->segments.empty())
                unclaimed = lastLineOf(*note, note->segments.front(), nextStart) + 1;
            outline.add(note->depth, textOf(*note, nextStart));
        }
        return outline;
    }

private:
    struct Frame {
        MD_BLOCKTYPE type;
        bool hasNote;
    };
    struct Heading {
        unsigned level;
        std::size_t depth;
    };

    std::size_t headingBase() const { return m_headings.empty() ? 0 : m_headings.back().depth + 1; }

    long addNote(std::size_t depth, bool isItem, bool isHeading) {
        PendingNote note{depth, isItem, isHeading, {}, 0, false};
        if (!m_notes.empty())
            note.depth = std::min(note.depth, m_notes.back().depth + 1);
        m_notes.push_back(std::move(note));
        return static_cast<long>(m_notes.size() - 1);
    }

    std::size_t lineOf(std::size_t offset) const {
        // Offsets are asked for mostly in order, so the line found last, or the one after it,
        // is nearly always the answer; a search would cost a megabyte of one-line items dearly.
        for (std::size_t near = m_lastLine; near < m_lastLine + 2 && near < m_lineStarts.size();
             ++near)
            if (m_lineStarts[near] <= offset &&
                (near + 1 == m_lineStarts.size() || offset < m_lineStarts[near + 1]))
                return m_lastLine = near;
        m_lastLine = static_cast<std::size_t>(
                         std::upper_bound(m_lineStarts.begin(), m_lineStarts.end(), offset) -
                         m_lineStarts.begin()) -
                     1;
        return m_lastLine;
    }

    std::string_view line(std::size_t index) const {
        const std::size_t start = m_lineStarts[index];
        std::size_t end =
            index + 1 < m_lineStarts.size() ? m_lineStarts[index + 1] - 1 : m_source.size();
        std::string_view text = m_source.substr(start, end - start);
        if (text.ends_with('\r'))
            text.remove_suffix(1);
        return text;
    }

    // The line of an item's marker, given the line of its first text: the same, or the nearest
    // line above that starts with a list marker, when the item starts with lines that hold no text
    // (escaped empty lines, the start of a code span). Lines between an item's marker and its
    // first text never start with one: that would be a list inside it.
    std::size_t markerLine(std::size_t firstText) const {
        for (std::size_t line = firstText;; --line) {
            if (listMarkerLength(trimmedStart(this->line(line))) > 0)
                return line;
            if (line == 0)
                return firstText;
        }
    }

    // Gives an item without text a segment at the first line in [from, bound) that starts with a
    // list marker, reaching to the end of that line; none when there is no such line.
    void locateByMarker(PendingNote& note, std::size_t index, std::size_t from,
                        std::size_t bound) const {
        for (std::size_t candidate = from; candidate < bound; ++candidate) {
            if (listMarkerLength(trimmedStart(line(candidate))) == 0)
                continue;
            const std::size_t end = m_lineStarts[candidate] + line(candidate).size();
            note.segments.push_back({end, end, false, index + 1});
            return;
        }
    }

    std::size_t firstLineOf(const PendingNote& note, const Segment& segment, bool opening) const {
        std::size_t firstLine = lineOf(segment.first);
        if (segment.fenceBefore && firstLine > 0 && isFenceLine(line(firstLine - 1)))
            --firstLine;
        return opening && note.isItem ? markerLine(firstLine) : firstLine;
    }

    std::size_t startLine(const PendingNote& note) const {
        return note.segments.empty() ? static_cast<std::size_t>(-1)
                                     : firstLineOf(note, note.segments.front(), true);
    }

    // The last line of a segment: the line of its last text, and the lines after it that hold
    // no text but close what it opened (a fence, a code span, a link), up to a blank line, a
    // line that starts a list item or a heading, or where the next note starts.
    std::size_t lastLineOf(const PendingNote& note, const Segment& segment,
                           const std::vector<std::size_t>& nextStart) const {
        std::size_t lastLine = lineOf(segment.last);
        if (note.isHeading)
            return lastLine;
        const std::size_t bound = std::min(nextStart[segment.nextNote], m_lineStarts.size());
        while (lastLine + 1 < bound) {
            const std::string_view next = trimmedStart(line(lastLine + 1));
            if (next.empty() || listMarkerLength(next) > 0 || next.starts_with('#'))
                break;
            ++lastLine;
        }
        return lastLine;
    }

    std::string textOf(const PendingNote& note, const std::vector<std::size_t>& nextStart) const {
        std::string text;
        std::size_t contentColumns = 0;
        for (std::size_t s = 0; s < note.segments.size(); ++s) {
            const Segment& segment = note.segments[s];
            const bool opening = s == 0;
            const std::size_t firstLine = firstLineOf(note, segment, opening);
            const std::size_t lastLine = lastLineOf(note, segment, nextStart);
            if (!opening)
                text += '\n';
            for (std::size_t index = firstLine; index <= lastLine; ++index) {
                std::string_view content = line(index);
                if (opening && index == firstLine) {
                    std::size_t cut = prefixLength(content, note.isHeading);
                    const std::size_t start = m_lineStarts[index];
                    if (segment.first >= start && segment.first - start < cut)
                        cut = segment.first - start;
                    contentColumns = columnsOf(content.substr(0, cut));
                    content = content.substr(cut);
                } else {
                    content = withoutColumns(content, contentColumns);
                    text += '\n';
                }
                const bool first = opening && index == firstLine;
                text += withoutEscape(content, first ? markdownFirstLineNeedsEscape
                                                     : markdownLineNeedsEscape);
            }
        }
        return text;
    }

    static std::size_t columnsOf(std::string_view prefix) {
        std::size_t column = 0;
        for (char c : prefix)
            column = c == '\t' ? (column / 4 + 1) * 4 : column + 1;
        return column;
    }

    std::string_view m_source;
    std::vector<std::size_t> m_lineStarts;
    mutable std::size_t m_lastLine = 0; // where lineOf() found the last offset
    std::vector<PendingNote> m_notes;
    std::vector<Frame> m_frames;
    std::vector<std::size_t> m_noteStack;
    std::vector<Heading> m_headings;
    std::size_t m_itemDepth = 0;
};

} // namespace

ParsedOutline readMarkdownOutline(std::string_view markdown) {
    if (auto line = outline_import::lineOfInvalidUtf8(markdown))
        return outline_import::failure(*line, "the text is not UTF-8");
    if (markdown.size() > kMaxOutlineFileBytes)
        return outline_import::failure(0, "the text is larger than 256 MB");

    // md4c hands NUL characters over as U+FFFD from outside the text, which would leave them
    // outside every note's lines: they are replaced before it reads.
    std::string withoutNul;
    if (markdown.find('\0') != std::string_view::npos) {
        withoutNul.reserve(markdown.size());
        for (char c : markdown)
            withoutNul += c == '\0' ? std::string_view("\xEF\xBF\xBD") : std::string_view(&c, 1);
        markdown = withoutNul;
    }
    OutlineBuilder builder(markdown);
    MD_PARSER parser{};
    parser.flags = MD_FLAG_NOHTML;
    parser.enter_block = [](MD_BLOCKTYPE type, void* detail, void* self) {
        return static_cast<OutlineBuilder*>(self)->enterBlock(type, detail);
    };
    parser.leave_block = [](MD_BLOCKTYPE type, void*, void* self) {
        return static_cast<OutlineBuilder*>(self)->leaveBlock(type);
    };
    parser.enter_span = [](MD_SPANTYPE, void*, void*) {
        return 0;
    };
    parser.leave_span = [](MD_SPANTYPE, void*, void*) {
        return 0;
    };
    parser.text = [](MD_TEXTTYPE, const MD_CHAR* text, MD_SIZE size, void* self) {
        return static_cast<OutlineBuilder*>(self)->text(text, size);
    };
    if (md_parse(markdown.data(), static_cast<MD_SIZE>(markdown.size()), &parser, &builder) != 0)
        return outline_import::failure(0, "the markdown could not be read");
    return {builder.finish(), std::nullopt};
}

} // namespace quillery
