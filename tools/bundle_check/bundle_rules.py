"""What belongs into the bundle's folder."""

import os
from pathlib import Path

from .findings import Findings, Malformed
from .module_rules import check_module
from .plist_rules import CURE as PLIST_CURE
from .plist_rules import check_plist, read_plist
from .source_texts import SourceTexts

REBUILD = "run scripts/bundle again"


def _check_folder(bundle, module, texts, findings):
    findings.want(bundle.name == texts.folder, "bundle",
                  f"is called '{bundle.name}', not '{texts.folder}'",
                  "rename it: the plug-in looks for its service under that name")
    belongs = {Path("Contents/Info.plist"), Path("Contents/Helpers/nevo"),
               Path("Contents/_CodeSignature/CodeResources"), module}
    for file in sorted(path for path in bundle.rglob("*") if not path.is_dir()):
        inside = file.relative_to(bundle)
        findings.want(inside in belongs, "bundle", f"{inside} does not belong into it", "remove it")
    for program in (module, Path("Contents/Helpers/nevo")):
        if (bundle / program).is_file():
            findings.want(os.access(bundle / program, os.X_OK), "bundle",
                          f"{program} cannot be executed", f"chmod 755 '{program}'")


def check_bundle(bundle):
    """Looks at everything that decides whether a browser loads `bundle`. Returns the faults."""
    bundle = Path(os.path.abspath(bundle))
    findings = Findings()
    try:
        texts = SourceTexts.read()
        if not bundle.is_dir():
            raise Malformed(f"{bundle} is not a bundle; name the folder that ends in .plugin")
        info = read_plist(bundle / "Contents" / "Info.plist")
        check_plist(info, texts, findings)
        name = info.get("CFBundleExecutable")
        if not isinstance(name, str) or not name or "/" in name:
            raise Malformed(f"Info.plist: CFBundleExecutable is missing; {PLIST_CURE}")
        module = Path("Contents/MacOS") / name
        _check_folder(bundle, module, texts, findings)
        if not (bundle / module).is_file():
            raise Malformed(f"{module} is missing, which Info.plist names; {REBUILD}")
        check_module((bundle / module).read_bytes(), texts, findings)
    except Malformed as error:
        text = str(error)
        findings.lines.append(text if ";" in text else f"{text}; {REBUILD}")
    return findings.lines
