#pragma once

#include "storage/NotebookPackage.h"

namespace quillery {

class FileSystem;
class PictureCodec;

// Opens a package: indexes the pictures of "images", reads every journal (top-level regular files
// whose names contain ".journal") in byte order of their names, merges them and replays the result
// into the document, adopting this client's journal as its log. Links inside the package are never
// followed, and nothing read from a journal becomes a path.
class PackageReader {
public:
    PackageReader(FileSystem& files, const PictureCodec& codec);

    // `ownRecords`, when given, join the records of this client's journal (each record once).
    std::optional<StorageError> read(Document& document, const std::filesystem::path& location,
                                     package::PackageSummary* summary,
                                     const std::vector<DocumentDiff>* ownRecords = nullptr);

private:
    void indexPictures(Document& document, const std::filesystem::path& imagesLocation,
                       package::PackageSummary& summary);

    FileSystem& m_files;
    const PictureCodec& m_codec;
};

} // namespace quillery
