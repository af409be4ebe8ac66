#!/usr/bin/env python3
"""Writes Fenlark's own document templates into resources/templates/<language>/:
invoice.xlsx, proforma.xlsx, creditnote.xlsx, Confirmation.docx, Registration.docx.

Run it again after changing a layout or a label; the files it writes are committed.
A property may replace any of them with its own: the named cells of the workbooks
and the bookmarks of the letters are what Fenlark fills.
"""
import os
import sys
import zipfile
from xml.sax.saxutils import escape

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "resources", "templates")
STAMP = (2026, 1, 1, 0, 0, 0)

LABELS = {
    "en": {
        "invoice": "INVOICE", "proforma": "PRO FORMA INVOICE", "creditnote": "CREDIT NOTE",
        "number": {"invoice": "Invoice No:", "proforma": "Pro forma No:", "creditnote": "Credit note No:"},
        "total": {"invoice": "Total due:", "proforma": "Total due:", "creditnote": "Total credited:"},
        "to": "To:", "date": "Date:", "account": "Account:", "vat": "VAT No:", "email": "E-mail:",
        "description": "Description", "amount": "Amount",
        "footer": "All amounts include VAT where it applies.", "sheet": "Invoice",
    },
    "es": {
        "invoice": "FACTURA", "proforma": "FACTURA PROFORMA", "creditnote": "NOTA DE CRÉDITO",
        "number": {"invoice": "Factura n.º:", "proforma": "Proforma n.º:", "creditnote": "Nota de crédito n.º:"},
        "total": {"invoice": "Total a pagar:", "proforma": "Total a pagar:", "creditnote": "Total abonado:"},
        "to": "Para:", "date": "Fecha:", "account": "Cuenta:", "vat": "NIF:", "email": "Correo:",
        "description": "Descripción", "amount": "Importe",
        "footer": "Todos los importes incluyen el IVA cuando corresponde.", "sheet": "Factura",
    },
}

# Bookmark names of the booking letters: the booking's names are translated
# (they must match the string tables), the registration's are not.
BOOKMARKS = {
    "en": {"Today": "Today", "MadeBy": "MadeBy", "Arrival": "Arrival", "Leaving": "Leaving", "NoNights": "NoNights",
           "NoRooms": "NoRooms", "TotGuests": "TotGuests", "Total": "Total", "Deposit": "Deposit",
           "TotalPayments": "TotalPayments", "Balance": "Balance", "Notes": "Notes", "MadeByAdd1": "MadeByAdd1",
           "MadeByAdd2": "MadeByAdd2", "MadeByCompany": "MadeByCompany", "MadeByTitle": "MadeByTitle",
           "MadeBySurname": "MadeBySurname"},
    "es": {"Today": "Hoy", "MadeBy": "HechaPor", "Arrival": "Llegada", "Leaving": "Salida", "NoNights": "Noches",
           "NoRooms": "Habitaciones", "TotGuests": "TotalHuespedes", "Total": "Total", "Deposit": "Deposito",
           "TotalPayments": "TotalPagos", "Balance": "Saldo", "Notes": "Notas", "MadeByAdd1": "HechaPorDireccion1",
           "MadeByAdd2": "HechaPorDireccion2", "MadeByCompany": "HechaPorEmpresa", "MadeByTitle": "HechaPorTitulo",
           "MadeBySurname": "HechaPorApellido"},
}

# The texts of the booking letters: each key once, with its English and its
# Spanish text side by side, so that neither language can miss one.
LETTER_TEXTS = [
    ("confirmation", "Booking confirmation", "Confirmación de reserva"),
    ("registration", "Guest registration", "Registro de huéspedes"),
    ("dear", "Dear ", "Estimado/a "),
    ("thanks", "Thank you for your booking. We are pleased to confirm it as follows.",
     "Gracias por su reserva. Nos complace confirmarla como sigue."),
    ("booking", "Booking ID: ", "Reserva n.º: "),
    ("arrival", "Arrival: ", "Llegada: "),
    ("leaving", "Departure: ", "Salida: "),
    ("nights", "Nights: ", "Noches: "),
    ("rooms", "Rooms: ", "Habitaciones: "),
    ("guests", "Guests: ", "Huéspedes: "),
    ("roomlist", "Accommodation", "Alojamiento"),
    ("names", "Guests", "Huéspedes"),
    ("refs", "References", "Referencias"),
    ("extras", "Extras", "Extras"),
    ("total", "Accommodation total: ", "Total del alojamiento: "),
    ("deposit", "Deposit required: ", "Depósito requerido: "),
    ("paid", "Payments received: ", "Pagos recibidos: "),
    ("balance", "Balance: ", "Saldo: "),
    ("notes", "Notes: ", "Notas: "),
    ("closing", "We look forward to welcoming you.", "Esperamos darle la bienvenida."),
    ("room", "Room: ", "Habitación: "),
    ("rate", "Rate: ", "Tarifa: "),
    ("pernight", "Average per night: ", "Media por noche: "),
    ("roomtotal", "Room total: ", "Total de la habitación: "),
    ("name", "Name: ", "Nombre: "),
    ("company", "Company: ", "Empresa: "),
    ("address", "Address: ", "Dirección: "),
    ("phone", "Phone: ", "Teléfono: "),
    ("cell", "Cell: ", "Móvil: "),
    ("email", "E-mail: ", "Correo: "),
    ("id", "ID or passport: ", "DNI o pasaporte: "),
    ("nationality", "Nationality: ", "Nacionalidad: "),
    ("count", "Guests in the room: ", "Huéspedes en la habitación: "),
    ("reference", "Reference: ", "Referencia: "),
    ("signature", "Signature: ________________________", "Firma: ________________________"),
]
LETTERS = {lang: {key: texts[i] for key, *texts in LETTER_TEXTS} for i, lang in enumerate(("en", "es"))}


def write_zip(path, parts):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as z:
        for name, text in parts:
            info = zipfile.ZipInfo(name, STAMP)
            info.compress_type = zipfile.ZIP_DEFLATED
            z.writestr(info, text.encode("utf-8"))


XML = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
REL = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
PKG_REL = "http://schemas.openxmlformats.org/package/2006/relationships"


def relationships(items):
    body = "".join(f'<Relationship Id="{i}" Type="{REL}/{t}" Target="{target}"/>' for i, t, target in items)
    return XML + f'<Relationships xmlns="{PKG_REL}">{body}</Relationships>'


# ---------------------------------------------------------------- workbooks

# Styles: 0 plain, 1 title, 2 bold label, 3 amount, 4 column heading, 5 amount heading,
# 6 total, 7 note, 8 bold label on the right, 9 document number.
STYLES = XML + """<styleSheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main">
<numFmts count="1"><numFmt numFmtId="164" formatCode="#,##0.00"/></numFmts>
<fonts count="4"><font><sz val="11"/><name val="Calibri"/><family val="2"/></font>
<font><b/><sz val="16"/><name val="Calibri"/><family val="2"/></font>
<font><b/><sz val="11"/><name val="Calibri"/><family val="2"/></font>
<font><i/><sz val="10"/><name val="Calibri"/><family val="2"/></font></fonts>
<fills count="2"><fill><patternFill patternType="none"/></fill><fill><patternFill patternType="gray125"/></fill></fills>
<borders count="3"><border><left/><right/><top/><bottom/><diagonal/></border>
<border><left/><right/><top/><bottom style="thin"><color auto="1"/></bottom><diagonal/></border>
<border><left/><right/><top style="thin"><color auto="1"/></top><bottom/><diagonal/></border></borders>
<cellStyleXfs count="1"><xf numFmtId="0" fontId="0" fillId="0" borderId="0"/></cellStyleXfs>
<cellXfs count="10">
<xf numFmtId="0" fontId="0" fillId="0" borderId="0" xfId="0"/>
<xf numFmtId="0" fontId="1" fillId="0" borderId="0" xfId="0" applyFont="1"/>
<xf numFmtId="0" fontId="2" fillId="0" borderId="0" xfId="0" applyFont="1"/>
<xf numFmtId="164" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1"/>
<xf numFmtId="0" fontId="2" fillId="0" borderId="1" xfId="0" applyFont="1" applyBorder="1"/>
<xf numFmtId="0" fontId="2" fillId="0" borderId="1" xfId="0" applyFont="1" applyBorder="1" applyAlignment="1"><alignment horizontal="right"/></xf>
<xf numFmtId="164" fontId="2" fillId="0" borderId="2" xfId="0" applyNumberFormat="1" applyFont="1" applyBorder="1"/>
<xf numFmtId="0" fontId="3" fillId="0" borderId="0" xfId="0" applyFont="1"/>
<xf numFmtId="0" fontId="2" fillId="0" borderId="0" xfId="0" applyFont="1" applyAlignment="1"><alignment horizontal="right"/></xf>
<xf numFmtId="1" fontId="0" fillId="0" borderId="0" xfId="0" applyNumberFormat="1" applyAlignment="1"><alignment horizontal="left"/></xf>
</cellXfs>
<cellStyles count="1"><cellStyle name="Normal" xfId="0" builtinId="0"/></cellStyles>
</styleSheet>"""


def text_cell(ref, text, style=0):
    return f'<c r="{ref}" s="{style}" t="inlineStr"><is><t>{escape(text)}</t></is></c>'


def styled_cell(ref, style):
    return f'<c r="{ref}" s="{style}"/>'


def workbook_parts(lang, kind):
    L = LABELS[lang]
    sheet = L["sheet"]
    rows = {}

    def put(row, cell):
        rows.setdefault(row, []).append(cell)

    put(1, text_cell("A1", L[kind], 1))
    put(3, text_cell("A3", L["to"], 2))
    put(3, text_cell("D3", L["date"], 8))
    put(3, styled_cell("E3", 0))
    put(4, text_cell("D4", L["number"][kind], 8))
    put(4, styled_cell("E4", 9))
    put(5, text_cell("D5", L["account"], 8))
    put(6, text_cell("D6", L["vat"], 8))
    put(7, text_cell("D7", L["email"], 8))
    put(11, styled_cell("A11", 7))
    put(12, text_cell("A12", L["description"], 4))
    for col in "BCD":
        put(12, styled_cell(f"{col}12", 4))
    put(12, text_cell("E12", L["amount"], 5))
    for row in range(13, 34):   # the line area, the end row and the payments row
        put(row, styled_cell(f"A{row}", 0))
        put(row, styled_cell(f"E{row}", 3))
    put(34, text_cell("D34", L["total"][kind], 8))
    put(34, f'<c r="E34" s="6"><f>SUM(E14:E33)</f></c>')
    put(36, text_cell("A36", L["footer"], 7))

    def cell_order(c):
        ref = c.split('r="')[1].split('"')[0]
        return "".join(ch for ch in ref if ch.isalpha())

    sheet_rows = "".join(
        f'<row r="{r}">' + "".join(sorted(cells, key=cell_order)) + "</row>" for r, cells in sorted(rows.items()))
    worksheet = XML + (
        '<worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" '
        f'xmlns:r="{REL}"><sheetPr><pageSetUpPr fitToPage="1"/></sheetPr><dimension ref="A1:E36"/>'
        '<sheetViews><sheetView workbookViewId="0" showGridLines="0"/></sheetViews>'
        '<sheetFormatPr defaultRowHeight="15"/>'
        '<cols><col min="1" max="1" width="52" customWidth="1"/><col min="2" max="3" width="8" customWidth="1"/>'
        '<col min="4" max="4" width="18" customWidth="1"/><col min="5" max="5" width="16" customWidth="1"/></cols>'
        f'<sheetData>{sheet_rows}</sheetData>'
        '<pageMargins left="0.7" right="0.7" top="0.75" bottom="0.75" header="0.3" footer="0.3"/>'
        '<pageSetup paperSize="9" orientation="portrait" fitToWidth="1" fitToHeight="0"/></worksheet>')
    names = {
        "VMInvoiceTo": "$A$4", "VMDate": "$E$3", "VMInvNo": "$E$4", "VMAccRef": "$E$5", "VMVATNo": "$E$6",
        "VMEmail": "$E$7", "VMNote": "$A$11", "VMInvLine": "$A$13", "End": "$A$30", "VMDeposit": "$A$33",
    }
    defined = "".join(f'<definedName name="{n}">{sheet}!{ref}</definedName>' for n, ref in sorted(names.items()))
    defined += f'<definedName name="_xlnm.Print_Area" localSheetId="0">{sheet}!$A$1:$E$36</definedName>'
    workbook = XML + (
        '<workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" '
        f'xmlns:r="{REL}"><bookViews><workbookView/></bookViews>'
        f'<sheets><sheet name="{sheet}" sheetId="1" r:id="rId1"/></sheets>'
        f'<definedNames>{defined}</definedNames><calcPr calcId="191029" fullCalcOnLoad="1"/></workbook>')
    content_types = XML + (
        '<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
        '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
        '<Default Extension="xml" ContentType="application/xml"/>'
        '<Override PartName="/xl/workbook.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.sheet.main+xml"/>'
        '<Override PartName="/xl/worksheets/sheet1.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml"/>'
        '<Override PartName="/xl/styles.xml" ContentType="application/vnd.openxmlformats-officedocument.spreadsheetml.styles+xml"/>'
        '</Types>')
    return [
        ("[Content_Types].xml", content_types),
        ("_rels/.rels", relationships([("rId1", "officeDocument", "xl/workbook.xml")])),
        ("xl/workbook.xml", workbook),
        ("xl/_rels/workbook.xml.rels",
         relationships([("rId1", "worksheet", "worksheets/sheet1.xml"), ("rId2", "styles", "styles.xml")])),
        ("xl/worksheets/sheet1.xml", worksheet),
        ("xl/styles.xml", STYLES),
    ]


# ---------------------------------------------------------------- letters

W = "http://schemas.openxmlformats.org/wordprocessingml/2006/main"


class Letter:
    def __init__(self):
        self.next_id = 0
        self.body = []

    def run(self, text, bold=False, size=None):
        props = ("<w:b/>" if bold else "") + (f'<w:sz w:val="{size}"/>' if size else "")
        props = f"<w:rPr>{props}</w:rPr>" if props else ""
        return f'<w:r>{props}<w:t xml:space="preserve">{escape(text)}</w:t></w:r>'

    def mark(self, name, bold=False):
        i = self.next_id
        self.next_id += 1
        return (f'<w:bookmarkStart w:id="{i}" w:name="{name}"/>' + self.run(f"«{name}»", bold)
                + f'<w:bookmarkEnd w:id="{i}"/>')

    def para(self, *pieces, after=120):
        self.body.append(f'<w:p><w:pPr><w:spacing w:after="{after}"/></w:pPr>{"".join(pieces)}</w:p>')

    def line(self, label, name):
        self.para(self.run(label, bold=True), self.mark(name), after=40)


def document_parts(letter, footer_text):
    content_types = XML + (
        '<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
        '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
        '<Default Extension="xml" ContentType="application/xml"/>'
        '<Override PartName="/word/document.xml" ContentType="application/vnd.openxmlformats-officedocument.wordprocessingml.document.main+xml"/>'
        '<Override PartName="/word/styles.xml" ContentType="application/vnd.openxmlformats-officedocument.wordprocessingml.styles+xml"/>'
        '<Override PartName="/word/footer1.xml" ContentType="application/vnd.openxmlformats-officedocument.wordprocessingml.footer+xml"/>'
        '</Types>')
    styles = XML + (
        f'<w:styles xmlns:w="{W}"><w:docDefaults><w:rPrDefault><w:rPr>'
        '<w:rFonts w:ascii="Calibri" w:hAnsi="Calibri" w:cs="Calibri"/><w:sz w:val="22"/></w:rPr></w:rPrDefault>'
        '</w:docDefaults><w:style w:type="paragraph" w:default="1" w:styleId="Normal"><w:name w:val="Normal"/></w:style>'
        '</w:styles>')
    document = XML + (
        f'<w:document xmlns:w="{W}" xmlns:r="{REL}"><w:body>{"".join(letter.body)}'
        '<w:sectPr><w:footerReference w:type="default" r:id="rId2"/>'
        '<w:pgSz w:w="11906" w:h="16838"/><w:pgMar w:top="1134" w:right="1134" w:bottom="1134" w:left="1134" '
        'w:header="567" w:footer="567" w:gutter="0"/></w:sectPr></w:body></w:document>')
    footer = XML + f'<w:ftr xmlns:w="{W}" xmlns:r="{REL}">{footer_text}</w:ftr>'
    return [
        ("[Content_Types].xml", content_types),
        ("_rels/.rels", relationships([("rId1", "officeDocument", "word/document.xml")])),
        ("word/document.xml", document),
        ("word/_rels/document.xml.rels", relationships([("rId1", "styles", "styles.xml"), ("rId2", "footer", "footer1.xml")])),
        ("word/styles.xml", styles),
        ("word/footer1.xml", footer),
    ]


def confirmation(lang):
    T, B = LETTERS[lang], BOOKMARKS[lang]
    d = Letter()
    d.para(d.run(T["confirmation"], bold=True, size=32), after=240)
    d.para(d.mark(B["Today"]))
    d.para(d.mark(B["MadeBy"]), after=0)
    d.para(d.mark(B["MadeByCompany"]), after=0)
    d.para(d.mark(B["MadeByAdd1"]), after=0)
    d.para(d.mark(B["MadeByAdd2"]), after=240)
    d.para(d.run(T["dear"]), d.mark(B["MadeByTitle"]), d.run(" "), d.mark(B["MadeBySurname"]), d.run(","), after=120)
    d.para(d.run(T["thanks"]), after=240)
    d.line(T["arrival"], B["Arrival"])
    d.line(T["leaving"], B["Leaving"])
    d.line(T["nights"], B["NoNights"])
    d.line(T["rooms"], B["NoRooms"])
    d.line(T["guests"], B["TotGuests"])
    for heading, name in (("roomlist", "Rooms"), ("names", "GuestNames"), ("refs", "References"), ("extras", "Extras")):
        d.para(d.run(T[heading], bold=True), after=40)
        d.para(d.mark(name), after=200)
    d.line(T["total"], B["Total"])
    d.line(T["deposit"], B["Deposit"])
    d.line(T["paid"], B["TotalPayments"])
    d.line(T["balance"], B["Balance"])
    d.para(d.run(T["notes"], bold=True), d.mark(B["Notes"]), after=240)
    d.para(d.run(T["closing"]))
    footer = f'<w:p>{d.run(T["booking"])}{d.mark("BookingID")}</w:p>'
    return document_parts(d, footer)


def registration(lang):
    T, B = LETTERS[lang], BOOKMARKS[lang]
    d = Letter()
    d.para(d.run(T["registration"], bold=True, size=32), after=240)
    d.line(T["booking"], "BookingID")
    d.line(T["room"], "RoomName")
    d.line(T["arrival"], B["Arrival"])
    d.line(T["leaving"], B["Leaving"])
    d.line(T["nights"], B["NoNights"])
    d.line(T["rate"], "RateCode")
    d.line(T["pernight"], "RoomRate")
    d.line(T["roomtotal"], "RoomTotal")
    d.para(after=120)
    d.line(T["name"], "GuestName")
    d.line(T["company"], "GuestCompany")
    d.line(T["address"], "GuestAdd1")
    d.para(d.mark("GuestAdd2"), after=40)
    d.line(T["phone"], "GuestPhone")
    d.line(T["cell"], "GuestCell")
    d.line(T["email"], "GuestEmail")
    d.line(T["id"], "GuestID")
    d.line(T["nationality"], "Nationality")
    d.line(T["count"], "NoGuests")
    d.line(T["reference"], "Reference")
    d.para(after=480)
    d.para(d.run(T["signature"]))
    footer = f'<w:p>{d.mark(B["Today"])}</w:p>'
    return document_parts(d, footer)


def main():
    for lang in ("en", "es"):
        folder = os.path.join(ROOT, lang)
        for kind in ("invoice", "proforma", "creditnote"):
            write_zip(os.path.join(folder, f"{kind}.xlsx"), workbook_parts(lang, kind))
        write_zip(os.path.join(folder, "Confirmation.docx"), confirmation(lang))
        write_zip(os.path.join(folder, "Registration.docx"), registration(lang))
    return 0


if __name__ == "__main__":
    sys.exit(main())
