#include "columns/NodeListModel.h"

#include "ColumnTestSupport.h"
#include "columns/ColumnDropHandler.h"

#include <QMimeData>

namespace quillery::testing {
namespace {

// The list model turns Qt's drop places (a row between rows, or a parent row) into the drop
// handler's.
class NodeListModelTest : public ColumnFixture {
protected:
    NodeListModelTest() {
        parent = add(document.rootNode(), "parent");
        for (const char* text : {"a", "b", "c"})
            add(parent, text);
        open(parent);
        model = column->listView()->model();
    }

    NodePtr parent;
    QAbstractItemModel* model = nullptr;
};

TEST_F(NodeListModelTest, TakesDropsBetweenRowsOrOnARowAndCopiesAddresses) {
    std::unique_ptr<QMimeData> drag(model->mimeData({model->index(0, 0)}));
    ASSERT_NE(drag, nullptr);
    EXPECT_FALSE(model->canDropMimeData(drag.get(), Qt::MoveAction, 1, 0, {}));
    EXPECT_FALSE(model->canDropMimeData(drag.get(), Qt::MoveAction, -1, -1, model->index(0, 0)));
    EXPECT_TRUE(model->dropMimeData(drag.get(), Qt::MoveAction, 3, 0, {}));
    EXPECT_EQ(shown(*column), "b, c, a");
    // Copied, never moved: the source keeps what it offered.
    QMimeData address;
    address.setUrls({QUrl(QStringLiteral("https://example.org/page"))});
    EXPECT_EQ(qobject_cast<NodeListModel*>(model)->dropAction(address, -1, {}), Qt::CopyAction);
}

} // namespace
} // namespace quillery::testing
