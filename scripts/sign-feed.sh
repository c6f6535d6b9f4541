#!/usr/bin/env bash
# sign-feed.sh KEY FEED: signs an update feed with an Ed25519 private key (PEM). Writes FEED.sig and
# tells the public key that a build needs to believe it.
set -euo pipefail
if [ $# -ne 2 ]; then
  echo "Usage: sign-feed.sh KEY FEED" >&2
  exit 2
fi
key=$1
feed=$2

case $(openssl pkey -in "$key" -noout -text) in
  ED25519*) ;;
  *)
    echo "$key is no Ed25519 key." >&2
    exit 1
    ;;
esac
signature=$(openssl pkeyutl -sign -rawin -inkey "$key" -in "$feed" | openssl base64 -A)
printf '%s\n' "$signature" >"$feed.sig"
public=$(openssl pkey -in "$key" -pubout -outform DER | tail -c 32 | openssl base64 -A)
echo "Signed $feed for ZEPHRIMARK_UPDATE_KEY=$public"
