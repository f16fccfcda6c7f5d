What boards look like, and the layers below their options.

  $ . "$TESTDIR/setup.sh"
  $ velk
  velk sets up boards: it shows their options and the values that are valid now,
  and sets them.
  
  Try:
    velk list --board 8
    velk set AddressSpace=1 --board 8 --dry-run
    velk help
  
  Definitions are looked for in the directory that -d DIR names, or
  VELK_DEFINITIONS, or else in the working directory. There has to be a catalogue
  in it, CfgClass.ini.
  $ velk --version
  velk 1.0.0
  $ velk classes -d vxi
  The catalogue of vxi:
  Class      Accessor   Key files  Option files  Defines
  VxiDevice  velkimage  keys.ini   options.ini   18 keys, 13 options
  $ cd vxi
  $ velk list --board 8
  Board 8, class VxiDevice (.):
  Option        Value                      Valid now
  DeviceClass   3 (register based)         none
  Manufacturer  161 (Example Instruments)  none
  Model         291 (digitizer)            none
  AddressSpace  0 (A16 and A24)            0 (A16 and A24), 1 (A16 and A32),
                                           3 (A16 only)
  Memory        4096 (4 KiB)               256 (256 bytes), 512 (512 bytes),
                                           1024 (1 KiB), 2048 (2 KiB), ..,
                                           8388608 (8 MiB)
  MemoryOffset  8192 (0x2000)              0 to 65535
  MemoryEnable  1 (enabled)                0 (disabled), 1 (enabled)
  Passed        1 (passed)                 none
  Ready         1 (ready)                  none
  Offline       0 (in service)             0 (in service), 1 (held in reset)
  Averages      16                         1, 4, 16, 64
  Label         "DIGITIZER"                any text
  TriggerLines  (0, 3)                     any list
  $ velk list -b 2>&1 | head -1
  velk: cannot read the command line: the following argument was not expected: -b; see `velk help list`.
  $ velk list --board 8 'MEM*' passed
  Board 8, class VxiDevice (.):
  Option        Value          Valid now
  Memory        4096 (4 KiB)   256 (256 bytes), 512 (512 bytes), 1024 (1 KiB),
                               2048 (2 KiB), .., 8388608 (8 MiB)
  MemoryOffset  8192 (0x2000)  0 to 65535
  MemoryEnable  1 (enabled)    0 (disabled), 1 (enabled)
  Passed        1 (passed)     none
  $ velk list --board 8 --keys
  Board 8, class VxiDevice (.):
  Key             Type      Register       Bits    Raw      Value
  DeviceClass     value     Id             15..14  0x3      3 (register based)
  AddressSpace    value     Id             13..12  0x0      0 (A16 and A24)
  Manufacturer    value     Id             11..0   0xA1     161 (Example
                                                            Instruments)
  RequiredMemory  computed  DeviceType     15..12  0xB      4096
  MemoryCode      value     DeviceType     15..12  0xB      11
  ModelCode       value     DeviceType     11..0   0x123    291
  ModelCodeA16    value     DeviceType     15..0   0xB123   45347
  MemoryActive    bool      StatusControl  15      0x1      1
  ModuleSelected  bool      StatusControl  14      0x1      0
  Averages        index     StatusControl  5..4    0x2      16
  Ready           bool      StatusControl  3       0x1      1 (ready)
  Passed          bool      StatusControl  2       0x1      1 (passed)
  SysfailInhibit  bool      StatusControl  1       0x0      0
  Reset           bool      StatusControl  0       0x0      0
  MemoryOffset    value     Offset         15..0   0x2000   8192
  TotalMemory     value     FittedMemory   31..0   0x10000  65536
  Label           string    Label          all              "DIGITIZER"
  TriggerLines    list      TriggerLines   all              (0, 3)
  $ velk list --board 8 --registers
  Board 8, class VxiDevice (.):
  Register    Name           Kind    Value
  0x00100000  Id             number  0x0000C0A1
  0x00100002  DeviceType     number  0x0000B123
  0x00100004  StatusControl  number  0x0000C02C
  0x00100006  Offset         number  0x00002000
  0x0010000C  FittedMemory   number  0x00010000
  0x0B000010  Label          text    "DIGITIZER"
  0x0F000020  TriggerLines   list    (0, 3)
  $ velk list --board 8 --registers offset '0x0[BF]*'
  Board 8, class VxiDevice (.):
  Register    Name          Kind    Value
  0x00100006  Offset        number  0x00002000
  0x0B000010  Label         text    "DIGITIZER"
  0x0F000020  TriggerLines  list    (0, 3)
  $ velk list --board 8 --registers Ofset
  velk: cannot find the register 'Ofset': Virtual register not found (-3); did you mean Offset?
  [3]
  $ velk list --board 8 memory Redy
  velk: cannot find the option 'Redy': Unknown option (-9); did you mean Ready?
  [3]
  $ velk list --board 8 --registers --keys
  velk: cannot list keys and registers at once; give --keys or --registers.
  [2]
  $ COLUMNS=40 velk list --board 8 'mem*'
  Board 8, class VxiDevice (.):
  Memory
    Value: 4096 (4 KiB)
    Valid now: 256 (256 bytes),
      512 (512 bytes), 1024 (1 KiB),
      2048 (2 KiB), .., 8388608 (8 MiB)
  MemoryOffset
    Value: 8192 (0x2000)
    Valid now: 0 to 65535
  MemoryEnable
    Value: 1 (enabled)
    Valid now: 0 (disabled), 1 (enabled)
  $ COLUMNS=40 velk list --board 24 --keys 'm*'
  Board 24, class VxiDevice (.):
  Manufacturer
    Type: value
    Register: Id
    Bits: 11..0
    Raw: 0xA2
    Value: 162 (Sample Works)
  MemoryCode
    Type: value
    Register: DeviceType
    Bits: 15..12
    Raw: 0xB
    Value: 11
  ModelCode
    Type: value
    Register: DeviceType
    Bits: 11..0
    Raw: 0x345
    Value: 837
  ModelCodeA16
    Type: value
    Register: DeviceType
    Bits: 15..0
    Raw: 0xB345
    Value: 45893
  MemoryActive
    Type: bool
    Register: StatusControl
    Bits: 15
    Raw: 0x1
    Value: 1
  ModuleSelected
    Type: bool
    Register: StatusControl
    Bits: 14
    Raw: 0x1
    Value: 0
  MemoryOffset
    Type: value
    Register: Offset
    Bits: 15..0
    Raw: 0x2000
    Value: 8192
  $ COLUMNS=140 velk list --board 8 'm*'
  Board 8, class VxiDevice (.):
  Option        Label           Value                      Valid now
  Manufacturer                  161 (Example Instruments)  none
  Model                         291 (digitizer)            none
  Memory        Memory window   4096 (4 KiB)               256 (256 bytes), 512 (512 bytes), 1024 (1 KiB), 2048 (2 KiB), .., 8388608 (8 MiB)
  MemoryOffset  Memory address  8192 (0x2000)              0 to 65535
  MemoryEnable                  1 (enabled)                0 (disabled), 1 (enabled)

Without a board it shows what is defined.

  $ velk list
  Class VxiDevice (.):
  Option        Label              Kind
  DeviceClass                      list
  Manufacturer                     range
  Model                            range
  AddressSpace                     list
  Memory        Memory window      list
  MemoryOffset  Memory address     range
  MemoryEnable                     list
  Passed                           list
  Ready                            list
  Offline                          list
  Averages      Readings averaged  list
  Label                            text
  TriggerLines                     lists
  $ velk list --keys 'Memory*'
  Class VxiDevice (.):
  Key           Type   Register       Bits
  MemoryCode    value  DeviceType     15..12
  MemoryActive  bool   StatusControl  15
  MemoryOffset  value  Offset         15..0
  $ velk list --registers
  velk: cannot run list without a configuration; say which, by --board N or --file SAVE.
  [2]

Values alone, and all valid ones.

  $ velk get AddressSpace Label TriggerLines ModelCode --board 8
  0
  DIGITIZER
  (0, 3)
  291
  $ velk get --board 8 --key ModelCode Ready
  291
  1
  $ velk --board 8 get Ready ModelCode --key Passed DeviceClass
  1
  291
  1
  3
  $ velk get --board 8 '[x]'
  velk: cannot find the option or key '[x]': Unknown option (-9); look at `velk list` for the names.
  [3]
  $ velk get Memory --board 8 --key
  velk: cannot find the key 'Memory': Unknown key (-13); did you mean MemoryCode, MemoryActive or MemoryOffset?
  [3]
  $ velk values Memory --board 8
  Memory of board 8:
  Memory window
  How much of its memory the device shows in A24 or A32 space.
  It is 4096 (4 KiB).
  Valid now  Word
  256        256 bytes
  512        512 bytes
  1024       1 KiB
  2048       2 KiB
  4096       4 KiB
  8192       8 KiB
  16384      16 KiB
  32768      32 KiB
  65536      64 KiB
  131072     128 KiB
  262144     256 KiB
  524288     512 KiB
  1048576    1 MiB
  2097152    2 MiB
  4194304    4 MiB
  8388608    8 MiB
  A value between two of a list becomes the next larger one, not the nearest.
  $ velk values MemoryOffset --board 8
  MemoryOffset of board 8:
  Memory address
  Where the window lies, in units of 256 bytes of A24 or 64 KiB of A32.
  It is 8192.
  Valid now: 0 to 65535.
  $ velk values Model --board 8
  Model of board 8:
  It is 291 (digitizer).
  Valid now: none.
  No value is valid now: setting it succeeds and changes nothing.
  $ velk values TriggerLines --board 8
  TriggerLines of board 8:
  It is (0, 3).
  Valid now: any list.

An option that cannot be read hinders nothing, and controls of a board reach no terminal.

  $ cd ../board
  $ printf '\20\144\200\0' | dd of=board.img conv=notrunc status=none
  $ printf 'a\033[1m\200' | dd of=board.img bs=1 seek=16 conv=notrunc status=none
  $ velk list --board 0
  Board 0, class Board (.):
  Option  Value                 Valid now
  Mode    0                     0 to 15
  Rate    100 - not valid now   0 to 100 in steps of 32
  Speed   16 MHz (slow)         16 MHz (slow), 32 MHz (sleepy), 64 MHz,
                                128 MHz (fast)
  Flag    Internal error (-99)  0 to 2
  Title   "a\x1B[1m\x80"        any text
  Lines   ()                    any list
  $ velk get Title --board 0
  a\x1B[1m\x80
  $ velk get Flag --board 0
  velk: cannot read Flag of board 0: Internal error (-99); look at `velk list --keys` for keys that cannot be read.
  [3]
  $ velk values Rate --board 0
  Rate of board 0:
  It is 100, which is not valid now.
  Valid now: 0 to 100 in steps of 32.
  100 ends the range off its steps: it is stored for what lies above, stays until
  it is set again, and then becomes 96.
  $ velk values Mode --board 0
  Mode of board 0:
  It is 0.
  Valid now: 0 to 15.
  5 is 7.
  6 is tab\there.
  7 is caf\xE9.
