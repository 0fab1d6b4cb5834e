#include "columns/TransferredNotes.h"

#include "EncodedPicture.h"

#include <QImage>

#include <gtest/gtest.h>

namespace quillery::testing {
namespace {

// Payloads come from any process that writes the type: what is not a whole payload reads as
// none, and a picture's extension can only be one a package keeps pictures under.
TEST(TransferredNotesTest, ReadsWholePayloadsOnlyAndKeepsPictureNamesInTheirPlace) {
    QImage image(4, 3, QImage::Format_RGB32);
    image.fill(Qt::blue);
    const QByteArray png = encoded(image, "png");
    TransferredNotes notes;
    notes.notebook = Identifier::makeRandom();
    notes.cutNote = Identifier::makeRandom();
    notes.outline.add(0, "top", "https://e.org");
    notes.outline.add(1, "", std::nullopt,
                      OutlinePicture{{png.begin(), png.end()}, {}, "../../evil"});
    notes.outline.add(1, "ünder");
    const QByteArray bytes = notes.toBytes();

    for (qsizetype size = 0; size < bytes.size(); ++size)
        ASSERT_FALSE(TransferredNotes::fromBytes(bytes.left(size))) << size;
    QByteArray otherMagic = bytes;
    otherMagic[0] = 'x';
    EXPECT_FALSE(TransferredNotes::fromBytes(otherMagic));

    const auto read = TransferredNotes::fromBytes(bytes);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->notebook, notes.notebook);
    EXPECT_EQ(read->cutNote, notes.cutNote);
    ASSERT_EQ(read->outline.size(), 3u);
    const OutlineNote& picture = read->outline.notes()[1];
    EXPECT_EQ(picture.depth, 1u);
    ASSERT_TRUE(picture.picture);
    EXPECT_EQ(picture.picture->fileExtension, "png");
    EXPECT_EQ(picture.picture->bytes.size(), static_cast<std::size_t>(png.size()));
    EXPECT_EQ(read->outline.notes()[0].url, "https://e.org");
    EXPECT_EQ(read->outline.notes()[2].text, "ünder");
}

} // namespace
} // namespace quillery::testing
