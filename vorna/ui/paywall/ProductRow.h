// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The products of a screen, one cell for each, and which of them is selected.

#include <vorna/documents/PaidProduct.h>
#include <vorna/ui/paywall/ProductCell.h>

#include <QtCore/QAbstractListModel>
#include <QtQmlIntegration/qqmlintegration.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorna::ui {

/// Each row of the model has one role, `cell`. Main thread.
class ProductRow : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the screens")

  public:
    /// The first product with the given identifier is selected; none when there is no such product.
    ProductRow(std::vector<PaidProduct> products, std::string_view selectedIdentifier);

    /// Absent while none is selected.
    std::optional<std::size_t> selectedProductIndex() const { return selectedProductIndex_; }

    const PaidProduct* selectedProduct() const;

    const std::vector<PaidProduct>& products() const { return products_; }

    /// Selects the product there, and posts `PaidProductClicked` with its identifier, also when it was
    /// selected before. Does nothing for an index that no product has.
    Q_INVOKABLE void cellTapped(int index);

    /// The cells that stand for products now.
    ProductCell& cell(std::size_t index) { return *cells_[index]; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

  private:
    void reload();

    const std::vector<PaidProduct> products_;
    std::optional<std::size_t> selectedProductIndex_;
    std::vector<std::unique_ptr<ProductCell>> cells_;
};

}  // namespace vorna::ui
