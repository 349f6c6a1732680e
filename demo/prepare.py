#!/usr/bin/env python3
"""Makes the demo store's data files from the public data sets that NOTICE.md names.

    demo/prepare.py SOURCE-FOLDER demo/data

The source folder holds retail/OnlineRetail.csv.gz, wholesale/*.csv and addresses/stores.json. The result is committed; this runs only
when a source or a rule below changes. Files are tab-separated with a heading line, UTF-8, sorted, so that a second run gives the same bytes.
"""
import collections
import csv
import gzip
import hashlib
import io
import json
import re
import statistics
import sys
from pathlib import Path

SMALL_WORDS = {"a", "an", "and", "at", "by", "for", "from", "in", "into", "it", "of", "on", "or", "the", "to", "with", "w"}
KEPT_WORDS = {"UK": "UK", "USA": "USA", "LED": "LED", "3D": "3D", "CD": "CD", "DVD": "DVD", "TV": "TV", "ABC": "ABC", "DIY": "DIY", "XMAS": "Xmas",
              "II": "II", "B'FLY": "Butterfly", "B'DRAW": "Bottom-Draw", "ASS": "Assorted", "ASST": "Assorted", "ASSTD": "Assorted", "ASSTED": "Assorted", "ASS'T": "Assorted", "ASST.": "Assorted", "CHRISTMA": "Christmas", "W": "with", "SM": "Small",
              "LGE": "Large", "COL": "Colour", "PCS": "Pieces", "FT": "Ft", "RRP": "RRP", "ENAMEL": "Enamel"}

# The first rule that a name matches gives the department.
DEPARTMENTS = [
    ("Christmas", r"christmas|xmas|advent|santa|reindeer|snowman|snowmen|snowflake|bauble|noel|nativity|mistletoe|rudolf"),
    ("Easter & Seasonal", r"easter|bunny|bunnies|chick\b|chicks|hallowe|valentine"),
    ("Candles & Lights", r"t-light|candle|lantern|light|lamp|incense|oil burner|fairy lights|nightlight"),
    ("Bags & Travel", r"\bbags?\b|shopper|lunch bag|luggage|passport|backpack|rucksack|suitcase|purse|holdall|umbrella|parasol|travel"),
    ("Jewellery", r"necklace|bracelet|earring|brooch|\bring\b|bangle|pendant|hair ?(clip|grip|slide|band|pin)|phone charm|jewel|choker|anklet|tiara|hairslide|hairclip"),
    ("Cards & Wrap", r"gift wrap|wrap\b|card\b|cards\b|gift tag|ribbon|tissue paper|envelope|sticker|gift box"),
    ("Party", r"party|bunting|balloon|garland|napkin|paper plate|paper cup|streamer|confetti|doil|straws|cake ?case|banner|paper chain"),
    ("Stationery & Books", r"pencil|\bpens?\b|notebook|journal|notepad|paper|book|writing|stationery|eraser|rubber|ruler|sharpener|memo|calendar|blackboard|chalk|stamp|tape|diary"),
    ("Kitchen & Dining", r"mug|cup\b|cups\b|plate|bowl|teapot|tea ?spoon|tea ?towel|tea set|tea bag|cutlery|spoon|fork|knife|bottle|jug|jar\b|jars\b|glass\b|glasses|tray|apron|oven|"
                         r"recipe|baking|cake|kitchen|coaster|egg|tumbler|cooking|jelly|mould|lunch ?box|snack|bread|cookie|toast|saucer|milk|sugar|salt|pepper|placemat|colander|sieve|"
                         r"flask|picnic|decanter|teacup|beaker|ramekin|trivet|spice|grater|measuring|scales|tin\b|tins\b|popcorn|ice cream|biscuit|tea\b|coffee|wine|cocktail|jam"),
    ("Toys & Games", r"\btoys?\b|doll|game|puzzle|jigsaw|dominoes|skittles|spinning|playhouse|soldier|tractor|train|soft|teddy|bear|yo ?yo|skipping|magic|kit\b|craft|ludo|dinosaur|"
                     r"rabbit|colouring|knitted|felt|sewing|block|puppet|robot|rocket|marbles|bingo|snakes|kids|children|childrens|child's|baby|girls?|boys?|gumball|gum ball"),
    ("Garden", r"garden|plant|flower ?pot|watering|bird|gnome|seed|herb marker|thermometer|windmill|pots?\b|trellis|hanging basket|greenhouse|trowel|glove|insect|butterfly|bee house|"
               r"wicker|basket|artificial|windsock|pinwheel|flower|rose\b|orchid|peony|tulip|daisy|sunflower|hydrangea|gerbera"),
    ("Clocks & Frames", r"clock|frame|mirror|photo|picture|canvas|print\b|poster"),
    ("Signs & Hooks", r"sign|hook|doormat|door ?stop|door|knob|letter rack|plaque|number tile|wall|coat ?(hanger|rack|hook)|hanger|magnet|alphabet|letter|wreath"),
    ("Bath & Bedroom", r"soap|bath|towel|hot water bottle|cushion|quilt|throw|blanket|pillow|lip gloss|hand warmer|drawer|lavender|washbag|sponge|toothbrush|slipper|sleep|wash\b|scent|"
                       r"pot ?pourri|talc|cosmetic|make-?up|toilet|fragrance|hottie|nail|manicure|curtain|throw"),
    ("Storage & Furniture", r"storage|box\b|boxes|cabinet|drawers|shelf|stool|chair|table|bin\b|crate|trunk|holder|rack|stand\b|caddy|cupboard|chest|organiser|tidy|tin"),
    ("Decorations", r"."),
]
CATEGORY_DEPARTMENTS = {"1": "Bikes", "2": "Bike Components", "3": "Cycle Clothing", "4": "Bike Accessories"}
WORKSHOP = "Workshop Parts"

GIFT_SUPPLIERS = [
    ("Hearth & Candle Company", {"Candles & Lights", "Decorations"}), ("Northfield Gift Imports", {"Decorations", "Christmas", "Easter & Seasonal"}),
    ("Pantry Lane Housewares", {"Kitchen & Dining", "Bath & Bedroom"}), ("Meadow Street Stationers", {"Stationery & Books", "Cards & Wrap", "Party"}),
    ("Larch & Linen", {"Bath & Bedroom", "Bags & Travel"}), ("Old Depot Trading", {"Signs & Hooks", "Clocks & Frames", "Storage & Furniture"}),
    ("Little Harbor Toys", {"Toys & Games"}), ("Prairie Garden Supply", {"Garden"}), ("Bluebell Accessories", {"Jewellery", "Bags & Travel"}),
    ("Winterberry Wholesale", {"Christmas", "Party"}), ("Copper Kettle Imports", {"Kitchen & Dining", "Storage & Furniture"}),
    ("General Novelty House", {"Decorations", "Toys & Games", "Garden", "Jewellery", "Cards & Wrap", "Stationery & Books", "Signs & Hooks", "Clocks & Frames", "Candles & Lights"}),
]
FIRST_NAMES = ("Ada Alan Alice Amy Andrea Andrew Angela Anna Anthony Barbara Ben Beth Brian Carol Catherine Charles Chloe Claire Daniel David Deborah Diana Donald Donna Edward "
               "Elaine Eleanor Emily Emma Eric Ethan Eva Frances Frank Gary George Gloria Grace Gregory Hannah Harold Heather Helen Henry Irene Isaac Jack Jacob James Jane Janet Jason "
               "Jean Jeffrey Jennifer Joan Joel John Joseph Joyce Judith Julia Karen Keith Kelly Kenneth Kevin Laura Lawrence Leo Linda Lisa Louis Lucy Luke Margaret Maria Mark Martha "
               "Martin Mary Matthew Megan Michael Nancy Nathan Nicole Nora Olivia Oscar Pamela Patricia Paul Peter Philip Rachel Ralph Raymond Rebecca Richard Robert Roger Rosa Ruth Ryan "
               "Samuel Sandra Sara Scott Sharon Simon Sophia Stephen Susan Teresa Thomas Timothy Victor Victoria Vincent Walter Wayne Wendy William Zoe").split()
LAST_NAMES = ("Adams Allen Anderson Bailey Baker Barnes Bell Bennett Brooks Brown Bryant Butler Campbell Carlson Carter Chen Clark Cole Coleman Collins Cook Cooper Cox Cruz Davis Diaz "
              "Dixon Edwards Ellis Evans Fisher Flores Ford Foster Fox Garcia Gibson Gomez Gonzalez Graham Gray Green Griffin Gupta Hall Hamilton Hansen Harris Hayes Henderson Hernandez "
              "Hill Holmes Howard Hughes Hunt Jackson James Jenkins Jensen Johnson Jones Jordan Kelly Kennedy Kim King Knight Larson Lee Lewis Lindberg Long Lopez Marshall Martin Martinez "
              "Mason McDonald Meyer Miller Mills Mitchell Moore Morales Morgan Morris Murphy Murray Myers Nelson Nguyen O'Brien O'Connor Olson Ortiz Owens Palmer Parker Patel Patterson "
              "Perez Perry Peterson Phillips Porter Powell Price Ramirez Reed Reyes Reynolds Richardson Rivera Roberts Robinson Rogers Ross Russell Sanchez Sanders Schmidt Scott Shaw "
              "Simmons Simpson Singh Smith Snyder Stevens Stewart Stone Sullivan Taylor Thomas Thompson Torres Tran Tucker Turner Wagner Walker Wallace Ward Warren Watson Weber Wells West "
              "White Williams Wilson Wong Wood Wright Young").split()
AREA_CODES = dict(zip("AL AK AZ AR CA CO CT DE FL GA HI ID IL IN IA KS KY LA ME MD MA MI MN MS MO MT NE NV NH NJ NM NY NC ND OH OK OR PA RI SC SD TN TX UT VT VA WA WV WI WY DC PR".split(),
                      "205 907 602 501 415 303 203 302 305 404 808 208 312 317 515 316 502 504 207 410 617 313 612 601 314 406 402 702 603 201 505 212 704 701 216 405 503 215 401 803 605 615 "
                      "214 801 802 804 206 304 414 307 202 787".split()))
COMPANY_ENDINGS = ("Gifts", "Trading", "& Sons", "Cycles", "Home Store", "Florist", "Books & Cards", "Coffee House", "Bed & Breakfast", "Outfitters")


def spread(key, count):
    """A number below count that depends on nothing but the key."""
    return int.from_bytes(hashlib.sha256(key.encode()).digest()[:6], "big") % count


def write(folder, name, heading, rows):
    with open(folder / name, "w", encoding="utf-8", newline="\n") as out:
        out.write("\t".join(heading) + "\n")
        for row in rows:
            cells = [str(cell) for cell in row]
            assert not any("\t" in cell or "\n" in cell for cell in cells), row
            out.write("\t".join(cells) + "\n")
    print(f"{name}: {len(rows)}")


def word_case(word, first):
    upper = word.upper()
    if upper in KEPT_WORDS:
        return KEPT_WORDS[upper] if not (upper == "W" and first) else "W"
    if not first and upper.lower() in SMALL_WORDS:
        return upper.lower()
    if re.fullmatch(r"[0-9]+(CM|MM|M|L|ML|G|KG|PC)", upper):
        return upper.lower()
    parts = re.split(r"([-/&,.])", upper)
    return "".join(part[:1] + part[1:].lower() if not part[:1].isdigit() else part.lower() for part in parts)


def good_name(text):
    text = re.sub(r"\s+", " ", text.replace("?", "").replace('"', " inch").strip(" .,'"))
    text = re.sub(r"\b(?:SET|S)/\s?(\d+)", r"Set of \1", text, flags=re.I)
    text = re.sub(r"\s*,\s*", ", ", text)
    words = text.split(" ")
    name = " ".join(word_case(word, i == 0) for i, word in enumerate(words))
    return re.sub(r"'S\b", "'s", name)[:100]


def department_of(name):
    low = name.lower()
    return next(department for department, rule in DEPARTMENTS if re.search(rule, low))


def check_digit(digits):
    total = sum(int(d) * (3 if i % 2 == 0 else 1) for i, d in enumerate(digits))
    return str(-total % 10)


def barcode(code):
    """A 12-digit code of the range that a store may use as it likes (4...)."""
    digits = "4" + f"{spread('barcode' + code, 10**10):010d}"
    return digits + check_digit(digits)


def read_retail(source):
    goods = collections.defaultdict(lambda: {"names": collections.Counter(), "prices": collections.Counter(), "quantities": collections.defaultdict(list), "lines": 0})
    with gzip.open(source / "retail/OnlineRetail.csv.gz", "rb") as raw:
        for row in csv.DictReader(io.TextIOWrapper(raw, encoding="utf-8", errors="replace")):
            quantity, price = int(row["Quantity"]), float(row["UnitPrice"])
            code = row["StockCode"].upper()
            if quantity <= 0 or price <= 0 or not re.fullmatch(r"\d{5}[A-Z]{0,2}", code) or "VOUCHER" in row["Description"].upper():
                continue
            good = goods[code]
            good["names"][re.sub(r"\s+", " ", row["Description"]).strip()] += 1
            good["prices"][row["UnitPrice"]] += 1
            good["quantities"][row["UnitPrice"]].append(quantity)
            good["lines"] += 1
    return goods


def price_text(cents):
    return f"{cents // 100}.{cents % 100:02d}"


def cents_of(text):
    return round(float(text) * 100)


def quantity_break(good, price):
    """A lower price that the shop really gave, with the quantity at which it usually did."""
    for text, count in good["prices"].most_common(4):
        quantities = good["quantities"][text]
        if cents_of(text) < price and count >= 10 and statistics.median(quantities) >= 6:
            return f"{int(statistics.median(quantities))}:{price_text(cents_of(text))}"
    return ""


def gift_items(goods):
    items, supplies = [], []
    for code in sorted(goods):
        good = goods[code]
        name = good_name(good["names"].most_common(1)[0][0])
        price = cents_of(good["prices"].most_common(1)[0][0])
        if price < 10 or price > 50000 or len(name) < 5:
            continue
        department = department_of(name)
        cost = max(4, price * (42 + spread("cost" + code, 17)) // 100)
        sold = max(1, good["lines"])
        reorder_at = min(120, max(4, sold // 25 + 4))
        items.append([code, code, name, department, 6, price_text(price), price_text(cost), sold, reorder_at, reorder_at * 2, barcode(code), "", "", quantity_break(good, price), 0])
        makers = [maker for maker, (_, departments) in enumerate(GIFT_SUPPLIERS) if department in departments]
        for priority, maker in enumerate(makers[:2], 1):
            own = cost if priority == 1 else cost * (103 + spread("second" + code, 9)) // 100
            supplies.append([code, code, GIFT_SUPPLIERS[maker][0], price_text(own), 12 if price < 500 else 4, priority, f"{GIFT_SUPPLIERS[maker][0][:2].upper()}-{code}"])
    return items, supplies


def split_items(gifts):
    """Packs that the shop also breaks up: the single piece is an item of its own."""
    singles, splits = [], []
    for row in gifts:
        pack = re.match(r"(?:Set|Pack) of (4|6|12) (.+)", row[2])
        if pack is None or row[7] < 250 or len(splits) == 16:
            continue
        pieces, code = int(pack.group(1)), row[0] + "-1"
        price = max(9, cents_of(row[5]) * 120 // 100 // pieces)
        singles.append([code, code, pack.group(2) + ", Single", row[3], 3, price_text(price), price_text(max(4, cents_of(row[6]) // pieces)), 0, 0, 0, barcode(code), "", "", "", 0])
        splits.append([code, code, row[0], row[1], pieces])
    return singles, splits


def read_table(source, name):
    with open(source / "wholesale" / name, encoding="utf-8-sig") as file:
        return [line.rstrip("\r\n").split("\t") for line in file]


def family_code(numbers):
    """What the codes of a family have in common: FR-R92B-58 and FR-R92R-58 give FR-R92."""
    common = numbers[0]
    for number in numbers:
        while not number.startswith(common):
            common = common[:-1]
    return re.sub(r"-\d?$", "", common)


def family_name(names):
    plain = [re.sub(r"( - [A-Za-z/]+)?(, ?[A-Za-z0-9]+)?$", "", name) for name in names]
    plain = [re.sub(r" (Red|Black|Silver|Yellow|Blue|White)$", "", name) for name in plain]
    return collections.Counter(plain).most_common(1)[0][0]


def cycle_items(source):
    categories = {row[0]: row[1] for row in read_table(source, "ProductSubcategory.csv")}
    vendors = {row[0]: row[2] for row in read_table(source, "Vendor.csv")}
    offers = collections.defaultdict(list)
    for row in read_table(source, "ProductVendor.csv"):
        offers[row[0]].append((cents_of(row[3]), vendors[row[1]], int(row[6]) if row[6] else 1))
    products = read_table(source, "Product.csv")
    families = collections.defaultdict(list)
    for row in products:
        if row[19] and (row[10].strip() or row[5].strip()) and row[18]:
            families[row[19]].append(row)
    families = {model: rows for model, rows in families.items() if len(rows) > 1 and len({row[1] for row in rows}) > 1 and len(family_code([row[2] for row in rows])) >= 4}
    parent_of, items, supplies = {}, [], []
    preferred = sorted(vendors.values())
    taken = {}
    for model in sorted(families, key=int):
        rows = families[model]
        code = family_code([row[2] for row in rows])
        if code in {row[2] for row in rows}:
            code += "-ALL"
        if code in taken:
            code += "-" + model
        taken[code] = model
        department = CATEGORY_DEPARTMENTS[categories[rows[0][18]]]
        items.append([code, code, family_name([row[1] for row in rows]), department, 4, "0.00", "0.00", 0, 0, 0, "", "", "", "", 0])
        for row in rows:
            parent_of[row[0]] = code
    for row in sorted(products, key=lambda product: int(product[0])):
        number, product, color, size, model_category = row[0], row[2], row[5].strip(), row[10].strip(), row[18]
        price, cost = cents_of(row[9] or "0"), cents_of(row[8] or "0")
        department = CATEGORY_DEPARTMENTS[categories[model_category]] if model_category else WORKSHOP
        dearest = max((offer[0] for offer in offers[number]), default=0)
        if price == 0:
            if dearest == 0:
                continue
            cost = min(offer[0] for offer in offers[number])
            price = (dearest * 150 // 100) // 100 * 100 + 95
        parent = parent_of.get(number, product)
        kind = 2 if number in parent_of else 6
        reorder_at = {"Bikes": 1, "Bike Components": 2, WORKSHOP: 4}.get(department, 6)
        weight = {"Bikes": 12, "Bike Components": 8, WORKSHOP: 15, "Cycle Clothing": 45}.get(department, 60)
        serial = 1 if department == "Bikes" else 0
        items.append([parent, product, row[1], department, kind, price_text(price), price_text(cost), max(1, weight - spread("w" + product, weight // 2)), reorder_at, reorder_at * 2,
                      barcode(product), color, size, "", serial])
        made = sorted(offers[number])[:3] or [(cost, preferred[spread("maker" + parent, len(preferred))], 1)]
        for priority, (offer, vendor, least) in enumerate(made, 1):
            ratio_cost = offer if not offers[number] or offer < price else cost
            supplies.append([parent, product, vendor, price_text(ratio_cost), min(least, 50), priority, product.replace("-", "")])
    return items, supplies, {supply[2] for supply in supplies}


def read_addresses(source):
    with open(source / "addresses/stores.json", encoding="utf-8") as file:
        stores = json.load(file)
    seen, addresses = set(), []
    for store in sorted(stores, key=lambda one: (one["zip"], one["address"])):
        key = (store["address"], store["zip"])
        if key in seen or not store["zip"][:5].isdigit() or store["state"] not in AREA_CODES:
            continue
        seen.add(key)
        addresses.append((store["address"].strip(), (store["address2"] or "").strip(), store["city"].strip(), store["state"], store["zip"]))
    return addresses


def phone(state, key):
    return f"({AREA_CODES[state]}) 555-{100 + spread('phone' + key, 100):04d}"


def supplier_rows(source, used, addresses):
    accounts = {row[2]: row[1] for row in read_table(source, "Vendor.csv")}
    rows = []
    for name in [maker for maker, _ in GIFT_SUPPLIERS] + sorted(used - {maker for maker, _ in GIFT_SUPPLIERS}):
        address = addresses[spread("supplier" + name, len(addresses))]
        account = accounts.get(name, re.sub(r"[^A-Z]", "", name.upper())[:8] + "0001")
        contact = FIRST_NAMES[spread("rep1" + name, len(FIRST_NAMES))] + " " + LAST_NAMES[spread("rep2" + name, len(LAST_NAMES))]
        site = re.sub(r"[^a-z]", "", name.lower())
        rows.append([name, address[0], address[1], address[2], address[3], address[4], phone(address[3], name), f"orders@{site}.example", account, contact, f"www.{site}.example"])
    return rows


def customer_rows(addresses):
    rows = []
    for number, address in enumerate(addresses, 1):
        key = "customer" + address[0] + address[4]
        first, last = FIRST_NAMES[spread(key + "f", len(FIRST_NAMES))], LAST_NAMES[spread(key + "l", len(LAST_NAMES))]
        kind = spread(key, 100)  # one in eight buys for a business, a few work here
        company = f"{last} {COMPANY_ENDINGS[spread(key + 'c', len(COMPANY_ENDINGS))]}" if kind < 12 else ""
        email = f"{first}.{last}@mail.example".lower().replace("'", "") if spread(key + "e", 3) else ""
        rows.append([f"C{10000 + number}", first, last, company, *address, phone(address[3], key), email,
                     "Trade" if kind < 9 else "Wholesale" if kind < 12 else "Staff" if kind == 50 else "Retail",
                     1 if kind < 12 or kind in (60, 61, 62) else 0, 1 if kind in (1, 2, 70) else 0])
    return rows


def main():
    source, folder = Path(sys.argv[1]), Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    goods = read_retail(source)
    gifts, gift_supplies = gift_items(goods)
    singles, splits = split_items(gifts)
    cycles, cycle_supplies, vendors = cycle_items(source)
    addresses = read_addresses(source)
    departments = [name for name, _ in DEPARTMENTS] + list(CATEGORY_DEPARTMENTS.values()) + [WORKSHOP]
    write(folder, "departments.tsv", ["department"], [[name] for name in departments])
    write(folder, "items.tsv", ["sku", "matrixsku", "name", "department", "type", "price", "cost", "popularity", "reorderat", "reorderqty", "barcode", "color", "size", "break", "serial"],
          sorted(gifts + singles + cycles, key=lambda row: (row[0], row[4] != 4, row[1])))
    write(folder, "splits.tsv", ["sku", "matrixsku", "parentsku", "parentmatrixsku", "quantity"], splits)
    write(folder, "itemsuppliers.tsv", ["sku", "matrixsku", "supplier", "cost", "minorder", "priority", "partno"], sorted(gift_supplies + cycle_supplies))
    write(folder, "suppliers.tsv", ["supplier", "address", "address2", "city", "state", "zip", "phone", "email", "account", "salesrep", "website"], supplier_rows(source, vendors, addresses))
    write(folder, "customers.tsv", ["account", "first", "last", "company", "address", "address2", "city", "state", "zip", "phone", "email", "tier", "charge", "exempt"], customer_rows(addresses))


if __name__ == "__main__":
    main()
