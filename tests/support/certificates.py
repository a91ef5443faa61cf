"""Certificates for TLS servers on loopback, good and bad ones, made by the openssl program."""

import subprocess

CONFIG = """
[ca]
default_ca = authority
[authority]
database = {folder}/index
new_certs_dir = {folder}
serial = {folder}/serial
default_md = sha256
policy = names
unique_subject = no
[names]
commonName = supplied
[here]
subjectAltName = IP:127.0.0.1,DNS:localhost
[elsewhere]
subjectAltName = IP:127.0.0.2,DNS:elsewhere.invalid
"""
VALID = ("20200101000000Z", "20491231235959Z")

# Name: issuer (None: itself), validity, extension section.
CERTIFICATES = {
    "good": ("authority", VALID, "here"),
    "unknown": ("stranger", VALID, "here"),
    "expired": ("authority", ("20200101000000Z", "20210101000000Z"), "here"),
    "notyet": ("authority", ("20480101000000Z", "20491231235959Z"), "here"),
    "elsewhere": ("authority", VALID, "elsewhere"),
    "selfsigned": (None, VALID, "here"),
}


def openssl(*arguments):
    subprocess.run(["openssl", *arguments], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def make_certificates(folder):
    """Leaves NAME.pem of each in the folder, their common key.pem, and authority.pem to trust."""
    config = f"{folder}/config"
    for name, text in (("config", CONFIG.format(folder=folder)), ("index", ""), ("serial", "01\n")):
        with open(f"{folder}/{name}", "w", encoding="ascii") as file:
            file.write(text)
    key = f"{folder}/key.pem"
    openssl("genpkey", "-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:P-256", "-out", key)
    for authority in ("authority", "stranger"):
        openssl("req", "-x509", "-new", "-key", key, "-subj", f"/CN={authority}", "-days", "3650",
                "-out", f"{folder}/{authority}.pem")
    openssl("req", "-new", "-key", key, "-subj", "/CN=localhost", "-out", f"{folder}/request")
    for name, (issuer, (begin, end), section) in CERTIFICATES.items():
        signer = ["-cert", f"{folder}/{issuer}.pem"] if issuer else ["-selfsign"]
        openssl("ca", "-batch", "-notext", "-config", config, "-keyfile", key, *signer, "-startdate", begin,
                "-enddate", end, "-extensions", section, "-in", f"{folder}/request", "-out", f"{folder}/{name}.pem")
