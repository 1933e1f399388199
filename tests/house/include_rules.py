"""Who may include what: floors, Qt, and one door for each library."""
import re

# A view, by its file's name: a class that draws and is allowed Qt.
VIEW = re.compile(r"(View|Window|Panel|Cell)$")
# Folders that are Qt's own, and folders that may have views.
QT_FOLDERS = ("src/app/", "src/qt/", "src/ui/")
VIEW_FOLDERS = ("src/login/", "src/device/", "src/tools/", "src/update/")
QT_HEADER = re.compile(r"^(Qt[A-Z]\w*/.*|Q[A-Z]\w*|Qt\w*|q[a-z_]+\.h)$")

# Areas that only the assembly names: what they offer has a port, or, the request layer, stands for itself.
ONLY_FOR_THE_ASSEMBLY = {"linux", "linux/http", "qt", "request", "update"}
# Areas with fewer neighbours than their floor would allow.
NARROW = {
    "linux/http": {"platform", "util"},
    "linux": {"platform", "util"},
    "qt": {"platform", "util"},
    "systools": {"linux", "platform", "util"},
    "installer": {"linux", "util"},
    "ui/widgets": {"platform", "util"},
    "request": {"http", "platform", "util"},
    "request/factory": {"request", "linux", "linux/http", "http", "platform", "util"},
}
# Areas that nobody includes: programs of their own, and what puts the request layer together for others.
UNUSED_BY_AREAS = {"systools", "installer", "request/factory", "app"}
WIDGETS = "ui/widgets"

# Each library and the files that may include it, by the beginning of their path. One door: its types
# and errors are translated there. fmt is the formatting of the whole house and needs no door.
DOORS = {
    "libcurl": (r"^curl/", ("src/linux/http/", "src/util/Url.cpp")),
    "libsecret": (r"^libsecret/", ("src/linux/SecretStore.",)),
    "libnm": (r"^(NetworkManager|nm-[\w-]+)\.h$|^libnm/", ("src/linux/", "src/systools/network/")),
    "GIO": (r"^(gio|glib|glib-object|gobject)[/.]", ("src/linux/", "src/systools/network/")),
    "sd-bus and sd-journal": (r"^systemd/", ("src/linux/",)),
    "Asio": (r"^asio(/|\.hpp)", ("src/linux/base/AsioDispatchQueue",)),
    "xcb": (r"^xcb/", ("src/qt/",)),
    "JSON": (r"^nlohmann/", ("src/util/Json.cpp",)),
    "property lists": (r"^plist/", ("src/util/PropertyList.cpp",)),
    "pugixml": (r"^pugixml", ("src/util/Xml.cpp",)),
    "ICU": (r"^unicode/", ("src/util/icu/",)),
    "NSS": (r"^(nss|nspr)/|^(nss|cert|pk11pub|p12|prerror|prinit|secmod|keyhi)\.h$", ("src/systools/security/",)),
    "OpenSSL": (r"^openssl/", ("src/util/Base64.cpp", "src/util/Digest.cpp", "src/util/PublicKey.cpp", "src/linux/http/", "src/systools/security/",
                               "server/authority/", "server/crypto/")),
    "SQLite": (r"^sqlite3", ("server/store/Database.", "server/store/Statement.")),
    "httplib": (r"^httplib\.h$", ("server/http/HttpServer.",)),
}


def floors(tree):
    """The areas of src/, from the ground up, as its CMakeLists.txt builds them."""
    listing = tree.files["src/CMakeLists.txt"].text
    return re.findall(r"^add_subdirectory\(([\w/]+)\)", listing, re.M)


def area_of(path, areas):
    """The area that a path below src/ belongs to: the longest that fits."""
    fitting = [a for a in areas if path.startswith(a + "/")]
    return max(fitting, key=len) if fitting else None


def may_use_qt(path):
    if path.startswith(QT_FOLDERS):
        return True
    return path.startswith(VIEW_FOLDERS) and bool(VIEW.search(path.rsplit("/", 1)[-1].rsplit(".", 1)[0]))


def _arrow_problem(path, area, target, order):
    """Why the file `path` of `area` may not include one of area `target`; empty when it may."""
    if area == target:
        return ""
    if area in NARROW:
        return "" if target in NARROW[area] else f"{area} uses only {', '.join(sorted(NARROW[area]))}"
    if target in UNUSED_BY_AREAS:
        return f"no other area uses {target}"
    if target in ONLY_FOR_THE_ASSEMBLY and area != "app":
        return f"only the assembly in app names {target}"
    if target == WIDGETS and not may_use_qt(path):
        return f"only views use {WIDGETS}"
    if order.index(target) > order.index(area):
        return f"{target} stands above {area}"
    return ""


def check_arrows(tree):
    """Includes inside src/ point downwards, server/ stands beside the client and knows only util."""
    order = floors(tree)
    for file in tree.cpp("src"):
        area = area_of(file.path[len("src/"):], order)
        if area is None:
            yield f"{file.path}: its folder is not one of the areas in src/CMakeLists.txt"
            continue
        for include in file.includes:
            if include.system:
                continue
            target = area_of(include.path, order)
            if include.path.startswith(("server/", "tests/", "support/")):
                yield f"{file.path}:{include.line}: the client knows nothing of {include.path}"
            elif target is None:
                yield f'{file.path}:{include.line}: "{include.path}" is no path from src/'
            elif problem := _arrow_problem(file.path, area, target, order):
                yield f"{file.path}:{include.line}: includes {include.path}, but {problem}"
    for file in tree.cpp("server"):
        for include in file.includes:
            if not include.system and not include.path.startswith(("server/", "util/")):
                yield f"{file.path}:{include.line}: includes {include.path}, but the server uses only util"


def check_qt(tree):
    """Qt only where it is allowed, and no plain file gets it through a header either."""
    reaches_qt = {}

    def reaches(path):
        if path not in reaches_qt:
            reaches_qt[path] = False  # a circle of includes adds nothing
            file = tree.files.get(path)
            reaches_qt[path] = file is not None and any(
                QT_HEADER.match(i.path) if i.system else reaches("src/" + i.path) for i in file.includes)
        return reaches_qt[path]

    for file in tree.cpp("src", "server"):
        if may_use_qt(file.path):
            continue
        for include in file.includes:
            if QT_HEADER.match(include.path):
                yield f"{file.path}:{include.line}: Qt ({include.path}) in a plain file"
            elif not include.system and reaches("src/" + include.path):
                yield f"{file.path}:{include.line}: gets Qt through {include.path}"


def check_doors(tree):
    """Each library is included only behind its door."""
    for file in tree.cpp("src", "server"):
        for include in file.includes:
            for library, (pattern, doors) in DOORS.items():
                if re.search(pattern, include.path) and not file.path.startswith(doors):
                    yield f"{file.path}:{include.line}: {library} has its door in {', '.join(doors)}"


CHECKS = {"arrows": check_arrows, "qt": check_qt, "doors": check_doors}
