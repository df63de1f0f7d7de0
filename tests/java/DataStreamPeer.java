import java.io.BufferedInputStream;
import java.io.BufferedOutputStream;
import java.io.DataInputStream;
import java.io.DataOutputStream;
import java.io.FileInputStream;
import java.io.FileOutputStream;
import java.io.IOException;
import java.io.UTFDataFormatException;
import java.util.ArrayList;
import java.util.List;
import java.util.UUID;
import java.util.stream.Collectors;

// The Java side of JavaPeerTest: Java's own data streams writing, or reading
// and checking, the values the test reads or writes with our protocols.
//   write FILE            writes the sequence
//   check FILE            reads the sequence; prints the first mismatch and exits 1
//   writeutf FILE CP...   writes one string of the given code points (hex)
//   readutf FILE          reads one string; prints its code points in hex, or
//                         UTFDataFormatException when Java refuses the bytes
// The source is plain ASCII so that javac reads it the same under any locale.
public final class DataStreamPeer {
    enum Kind { BYTE, BOOLEAN, SHORT, UNSIGNED_SHORT, INT, LONG, FLOAT, DOUBLE, GUID, UTF }

    record Item(Kind kind, Object value) {}

    // Keep in step with Sequence() in JavaPeerTest.cpp.
    static List<Item> sequence() {
        List<Item> items = new ArrayList<>();
        for (int v : new int[] {'A', 0, (byte) 0xE9}) items.add(new Item(Kind.BYTE, v));
        for (boolean v : new boolean[] {true, false}) items.add(new Item(Kind.BOOLEAN, v));
        for (int v : new int[] {Short.MIN_VALUE, Short.MAX_VALUE, -2}) items.add(new Item(Kind.SHORT, v));
        for (int v : new int[] {0, 65535}) items.add(new Item(Kind.UNSIGNED_SHORT, v));
        for (int v : new int[] {Integer.MIN_VALUE, Integer.MAX_VALUE, 0x01020304})
            items.add(new Item(Kind.INT, v));
        for (long v : new long[] {Long.MIN_VALUE, Long.MAX_VALUE, 0x0102030405060708L})
            items.add(new Item(Kind.LONG, v));
        for (float v : new float[] {Float.NaN, Float.POSITIVE_INFINITY, Float.NEGATIVE_INFINITY, -0.0f,
                                    Float.MIN_VALUE, 1.5f})
            items.add(new Item(Kind.FLOAT, v));
        for (double v : new double[] {Double.NaN, Double.POSITIVE_INFINITY, Double.NEGATIVE_INFINITY,
                                      -0.0, Double.MIN_VALUE, Math.PI})
            items.add(new Item(Kind.DOUBLE, v));
        items.add(new Item(Kind.GUID, UUID.fromString("f0e1d2c3-b4a5-9687-7869-5a4b3c2d1e0f")));
        String[] strings = {
            "", "\u00E9", "\u65E5\u672C\u8A9E",
            "a".repeat(512), "a".repeat(513), "a".repeat(65535),
            "\u65E5".repeat(21845),  // three bytes each: exactly the 65535-byte limit
            "Gr\u00FC\u00DFe \u0394\u03B5\u03BB\u03C4\u03B1 \u20AC",
            "\u0080\u07FF\u0800\uD7FF\uE000\uFFFF",  // edges of the 2- and 3-byte forms
        };
        for (String v : strings) items.add(new Item(Kind.UTF, v));
        return items;
    }

    static void write(DataOutputStream out, Item item) throws IOException {
        Object v = item.value();
        switch (item.kind()) {
            case BYTE -> out.writeByte((Integer) v);
            case BOOLEAN -> out.writeBoolean((Boolean) v);
            case SHORT, UNSIGNED_SHORT -> out.writeShort((Integer) v);
            case INT -> out.writeInt((Integer) v);
            case LONG -> out.writeLong((Long) v);
            case FLOAT -> out.writeFloat((Float) v);
            case DOUBLE -> out.writeDouble((Double) v);
            case GUID -> {
                UUID guid = (UUID) v;
                out.writeLong(guid.getMostSignificantBits());
                out.writeLong(guid.getLeastSignificantBits());
            }
            case UTF -> out.writeUTF((String) v);
        }
    }

    // Floats and doubles compare as raw bits, so that NaN equals itself and -0.0 differs from 0.0.
    static Object comparable(Item item) {
        return switch (item.kind()) {
            case FLOAT -> Float.floatToRawIntBits((Float) item.value());
            case DOUBLE -> Double.doubleToRawLongBits((Double) item.value());
            default -> item.value();
        };
    }

    static Object read(DataInputStream in, Kind kind) throws IOException {
        return switch (kind) {
            case BYTE -> (int) in.readByte();
            case BOOLEAN -> in.readBoolean();
            case SHORT -> (int) in.readShort();
            case UNSIGNED_SHORT -> in.readUnsignedShort();
            case INT -> in.readInt();
            case LONG -> in.readLong();
            case FLOAT -> Float.floatToRawIntBits(in.readFloat());
            case DOUBLE -> Double.doubleToRawLongBits(in.readDouble());
            case GUID -> new UUID(in.readLong(), in.readLong());
            case UTF -> in.readUTF();
        };
    }

    static String shown(Object value) {
        String text = String.valueOf(value);
        return text.length() <= 40 ? text : text.substring(0, 40) + "... (" + text.length() + " chars)";
    }

    static int check(String file) throws IOException {
        List<Item> items = sequence();
        try (DataInputStream in = new DataInputStream(new BufferedInputStream(new FileInputStream(file)))) {
            for (int i = 0; i < items.size(); ++i) {
                Item item = items.get(i);
                String name = "item " + i + " (" + item.kind() + ")";
                Object read;
                try {
                    read = read(in, item.kind());
                } catch (IOException e) {
                    System.out.println(name + ": " + e);
                    return 1;
                }
                if (!read.equals(comparable(item))) {
                    System.out.println(name + ": expected " + shown(comparable(item)) + ", read " + shown(read));
                    return 1;
                }
            }
            if (in.read() != -1) {
                System.out.println("bytes left after the last item");
                return 1;
            }
        }
        return 0;
    }

    public static void main(String[] args) throws IOException {
        if (args.length < 2) {
            System.err.println("usage: DataStreamPeer write|check|writeutf|readutf FILE [CP...]");
            System.exit(2);
        }
        String file = args[1];
        switch (args[0]) {
            case "write" -> {
                try (DataOutputStream out = new DataOutputStream(new BufferedOutputStream(new FileOutputStream(file)))) {
                    for (Item item : sequence()) write(out, item);
                }
            }
            case "check" -> System.exit(check(file));
            case "writeutf" -> {
                StringBuilder text = new StringBuilder();
                for (int i = 2; i < args.length; ++i) text.appendCodePoint(Integer.parseInt(args[i], 16));
                try (DataOutputStream out = new DataOutputStream(new FileOutputStream(file))) {
                    out.writeUTF(text.toString());
                }
            }
            case "readutf" -> {
                try (DataInputStream in = new DataInputStream(new FileInputStream(file))) {
                    String text = in.readUTF();
                    System.out.println(text.codePoints()
                                           .mapToObj(c -> Integer.toHexString(c).toUpperCase())
                                           .collect(Collectors.joining(" ")));
                } catch (UTFDataFormatException e) {
                    System.out.println("UTFDataFormatException");
                }
            }
            default -> {
                System.err.println("unknown mode " + args[0]);
                System.exit(2);
            }
        }
    }
}
