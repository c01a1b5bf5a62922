# Sourced by wine-run before the server starts: gives the prefix two more fixed drives, D and E.
for letter in d e; do
    mkdir -p "$WINEPREFIX/drive_$letter"
    ln -sfn "../drive_$letter" "$WINEPREFIX/dosdevices/$letter:"
done
