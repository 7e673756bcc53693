// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The products of a screen, one cell each, and the selection among them.

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

/// The model has a single role, `cell`. Main thread.
class ProductRow : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("created by the screens")

  public:
    /// Selects the first product with the identifier, or none if there is no such product.
    ProductRow(std::vector<PaidProduct> products, std::string_view selectedIdentifier);

    /// Returns nullptr if none is selected.
    const PaidProduct* selectedProduct() const;

    /// Selects the product and posts `PaidProductClicked` with its identifier, even if it was selected
    /// already. Ignores an index out of range.
    Q_INVOKABLE void cellTapped(int index);

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
