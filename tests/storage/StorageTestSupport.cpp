#include "StorageTestSupport.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace quillery::testing {

PicturePtr FakePictureCodec::decode(std::span<const std::uint8_t> bytes) const {
    if (bytes.size() < 3 || bytes[0] != 'P' || bytes[1] != 'I' || bytes[2] != 'C')
        return nullptr;
    return std::make_shared<FakePicture>(static_cast<int>(bytes.size()));
}

std::vector<std::uint8_t> pictureBytes(std::string_view tail) {
    std::string text = "PIC" + std::string(tail);
    return {text.begin(), text.end()};
}

Client::Client(std::string identifier, Document::Clock clockForEdits)
    : clock(std::move(clockForEdits)) {
    preferences.setString(kClientIdentifierKey, std::move(identifier));
    reopen();
}

Document& Client::reopen() {
    undoManager.removeAllActions();
    document.reset();
    document = std::make_unique<Document>(preferences, &codec, clock);
    document->setUndoManager(&undoManager);
    return *document;
}

NodePtr Client::addNote(std::string text, const NodePtr& parent) {
    const NodePtr& to = parent ? parent : document->rootNode();
    auto note = NotebookNode::create(to->identifier(), std::move(text));
    document->userDidAdd(*note, *to, -1);
    return document->node(note->identifier());
}

Identifier Client::addPictureNote(std::string_view bytes, const std::string& extension) {
    auto data = pictureBytes(bytes);
    Identifier key = document->addImage(codec.decode(data), data, extension);
    auto note = NotebookNode::create(document->rootNode()->identifier(), "", key);
    document->userDidAdd(*note, *document->rootNode(), -1);
    return key;
}

namespace {

void describe(const NotebookNode& node, int depth, std::ostringstream& out) {
    out << std::string(static_cast<std::size_t>(depth) * 2, ' ') << node.identifier().toString()
        << " \"" << node.text() << "\"";
    if (node.imageIdentifier())
        out << " image=" << node.imageIdentifier()->toString();
    if (node.url())
        out << " url=" << *node.url();
    out << '\n';
    for (const NodePtr& child : node.children())
        describe(*child, depth + 1, out);
}

} // namespace

std::string treeText(const Document& document) {
    std::ostringstream out;
    describe(*document.rootNode(), 0, out);
    describe(*document.deletedRootNode(), 0, out);
    return out.str();
}

std::string readText(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

void writeText(const std::filesystem::path& path, std::string_view text) {
    std::ofstream out(path, std::ios::binary);
    out << text;
}

std::vector<std::string> entryNames(const std::filesystem::path& directory) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace quillery::testing
