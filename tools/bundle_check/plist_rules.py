"""What browsers want of the bundle's property list."""

import plistlib
import re

from .findings import Malformed

CURE = "correct plugin/macos/Info.plist.in and run scripts/bundle again"
REBUILD = "run scripts/bundle again"


def read_plist(path):
    try:
        with open(path, "rb") as file:
            info = plistlib.load(file)
    except FileNotFoundError:
        raise Malformed(f"Contents/Info.plist is missing; {REBUILD}") from None
    except Exception as error:  # the parser lets several kinds through
        raise Malformed(f"Contents/Info.plist cannot be read ({error}); {CURE}") from None
    if not isinstance(info, dict):
        raise Malformed(f"Contents/Info.plist is not a dictionary; {CURE}")
    return info


def _check_mime_types(info, texts, findings):
    types = info.get("WebPluginMIMETypes")
    if not findings.want(isinstance(types, dict) and list(types) == [texts.mime_type],
                         "Info.plist", f"WebPluginMIMETypes is not just {texts.mime_type}", CURE):
        return
    entry = types[texts.mime_type]
    entry = entry if isinstance(entry, dict) else {}
    findings.want(entry.get("WebPluginExtensions") == [texts.suffix], "Info.plist",
                  f"WebPluginExtensions is not just '{texts.suffix}'", CURE)
    findings.want(entry.get("WebPluginTypeDescription") == texts.mime_description, "Info.plist",
                  f"WebPluginTypeDescription is not '{texts.mime_description}'", CURE)


def check_plist(info, texts, findings):
    """Checks the keys that browsers read, and that they say what the code says."""
    expected = {
        "CFBundleInfoDictionaryVersion": "6.0",
        "CFBundlePackageType": "BRPL",
        "LSMinimumSystemVersion": "10.13",
        "WebPluginName": texts.name,
        "WebPluginDescription": texts.description,
    }
    for key, value in expected.items():
        findings.want(info.get(key) == value, "Info.plist", f"{key} is not '{value}'", CURE)
    for key in ("CFBundleIdentifier", "CFBundleName"):
        findings.want(isinstance(info.get(key), str) and info[key], "Info.plist",
                      f"{key} is missing", CURE)
    for key in ("CFBundleVersion", "CFBundleShortVersionString"):
        findings.want(re.fullmatch(r"\d+(\.\d+){0,2}", str(info.get(key, ""))), "Info.plist",
                      f"{key} is not one to three numbers with dots",
                      "run scripts/bundle --version X.Y.Z")
    _check_mime_types(info, texts, findings)
