#include "accounts/accountrecords.h"

namespace fenlark {

const std::vector<Column<Account>> &Account::columns()
{
    static const std::vector<Column<Account>> c = {
        {"InvoiceTo", &Account::InvoiceTo},
        {"ProformaNo", &Account::ProformaNo},
        {"InvoiceNo", &Account::InvoiceNo},
        {"AccountID", &Account::AccountID},
        {"Status", &Account::Status},
        {"Reference", &Account::Reference},
        {"VatCode", &Account::VatCode},
    };
    return c;
}

const std::vector<Column<Extra>> &Extra::columns()
{
    static const std::vector<Column<Extra>> c = {
        {"ExtraID", &Extra::ExtraID},
        {"BBGuestID", &Extra::BBGuestID},
        {"ExtraDate", &Extra::ExtraDate},
        {"Qty", &Extra::Qty},
        {"Price", &Extra::Price},
        {"BBStockID", &Extra::BBStockID},
        {"BBAccountID", &Extra::BBAccountID},
    };
    return c;
}

const std::vector<Column<Payment>> &Payment::columns()
{
    static const std::vector<Column<Payment>> c = {
        {"PaymentID", &Payment::PaymentID},
        {"BBAccountID", &Payment::BBAccountID},
        {"CreateDate", &Payment::CreateDate},
        {"CreateUser", &Payment::CreateUser},
        {"PaymentDate", &Payment::PaymentDate},
        {"PaymentType", &Payment::PaymentType},
        {"Reference", &Payment::Reference},
        {"Amount", &Payment::Amount},
    };
    return c;
}

const std::vector<Column<ClientTran>> &ClientTran::columns()
{
    static const std::vector<Column<ClientTran>> c = {
        {"ClientTranID", &ClientTran::ClientTranID},
        {"BBClientID", &ClientTran::BBClientID},
        {"TranDate", &ClientTran::TranDate},
        {"TranType", &ClientTran::TranType},
        {"TranNo", &ClientTran::TranNo},
        {"Reference", &ClientTran::Reference},
        {"Amount", &ClientTran::Amount},
        {"VAT", &ClientTran::VAT},
        {"Matched", &ClientTran::Matched},
    };
    return c;
}

const std::vector<Column<Invoice>> &Invoice::columns()
{
    static const std::vector<Column<Invoice>> c = {
        {"InvoiceID", &Invoice::InvoiceID},
        {"InvoiceNo", &Invoice::InvoiceNo},
        {"BBClientID", &Invoice::BBClientID},
        {"CreateDate", &Invoice::CreateDate},
        {"CreateUser", &Invoice::CreateUser},
        {"Amount", &Invoice::Amount},
        {"VAT", &Invoice::VAT},
        {"BBAccountID", &Invoice::BBAccountID},
    };
    return c;
}

const std::vector<Column<InvoiceItem>> &InvoiceItem::columns()
{
    static const std::vector<Column<InvoiceItem>> c = {
        {"BBInvoiceID", &InvoiceItem::BBInvoiceID},
        {"InvoiceItemID", &InvoiceItem::InvoiceItemID},
        {"itemType", &InvoiceItem::itemType},
        {"ItemID", &InvoiceItem::ItemID},
        {"ItemDate", &InvoiceItem::ItemDate},
        {"Description", &InvoiceItem::Description},
        {"Qty", &InvoiceItem::Qty},
        {"Price", &InvoiceItem::Price},
        {"VatCode", &InvoiceItem::VatCode},
    };
    return c;
}

const std::vector<Column<CreditNote>> &CreditNote::columns()
{
    static const std::vector<Column<CreditNote>> c = {
        {"CreditNoteID", &CreditNote::CreditNoteID},
        {"CreditNoteNo", &CreditNote::CreditNoteNo},
        {"CreateDate", &CreditNote::CreateDate},
        {"CreateUser", &CreditNote::CreateUser},
        {"InvoiceNo", &CreditNote::InvoiceNo},
    };
    return c;
}

const std::vector<Column<Stock>> &Stock::columns()
{
    static const std::vector<Column<Stock>> c = {
        {"BBStockID", &Stock::BBStockID},
        {"StockName", &Stock::StockName},
        {"Active", &Stock::Active},
        {"Price", &Stock::Price},
        {"VatCode", &Stock::VatCode},
    };
    return c;
}


} // namespace fenlark
