// SPDX-License-Identifier: Apache-2.0
#include <vorna/ui/paywall/ProductRow.h>

#include <vorna/core/VornaCoreSDK.h>
#include <vorna/platform/NotificationCenter.h>

#include <utility>

namespace vorna::ui {

namespace {

constexpr int cellRole = Qt::UserRole;

}  // namespace

ProductRow::ProductRow(std::vector<PaidProduct> products, std::string_view selectedIdentifier)
    : products_(std::move(products)) {
    for (std::size_t index = 0; index < products_.size(); ++index) {
        if (!selectedProductIndex_ && products_[index].identifier == selectedIdentifier) {
            selectedProductIndex_ = index;
        }
        cells_.push_back(std::make_unique<ProductCell>());
    }
    reload();
}

const PaidProduct* ProductRow::selectedProduct() const {
    return selectedProductIndex_ ? &products_[*selectedProductIndex_] : nullptr;
}

void ProductRow::cellTapped(int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= products_.size()) {
        return;
    }
    selectedProductIndex_ = static_cast<std::size_t>(index);
    reload();
    NotificationCenter::defaultCenter().post(
        VornaCoreSDK::PaidProductClicked,
        {{std::string("identifier"), products_[*selectedProductIndex_].identifier}});
}

void ProductRow::reload() {
    for (std::size_t index = 0; index < products_.size(); ++index) {
        cells_[index]->configure(products_[index], selectedProductIndex_ == index);
    }
}

int ProductRow::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(products_.size());
}

QVariant ProductRow::data(const QModelIndex& index, int role) const {
    if (role != cellRole || !index.isValid() || static_cast<std::size_t>(index.row()) >= cells_.size()) {
        return {};
    }
    return QVariant::fromValue(cells_[static_cast<std::size_t>(index.row())].get());
}

QHash<int, QByteArray> ProductRow::roleNames() const {
    return {{cellRole, QByteArrayLiteral("cell")}};
}

}  // namespace vorna::ui
