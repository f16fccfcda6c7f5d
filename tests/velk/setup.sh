# What every transcript begins with: a copy of the examples and of the awkward board, and images for it.
export COLUMNS=80 NO_COLOR=1
unset VELK_DEFINITIONS VELK_CLASS
cp -R "$VELK_ROOT/examples/vxi" "$VELK_ROOT/tests/velk/board" .
head -c 256 /dev/zero >board/board.img
cp board/board.img board/zero.img
# same IMAGE OTHER: nothing has touched it.
same() {
    cmp "$1" "$2" && echo "the same bytes"
}
