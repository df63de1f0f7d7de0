import java.io.BufferedOutputStream;
import java.io.FileOutputStream;
import java.io.IOException;
import java.io.InputStream;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.zip.CRC32;
import java.util.Enumeration;
import java.util.zip.ZipEntry;
import java.util.zip.ZipFile;
import java.util.zip.ZipOutputStream;

// The Java side of the zip tests: writes the named files into a ZIP file
// with Java's own ZipOutputStream, so that our reader meets its layout
// (deflated entries always with data descriptors), or extracts one with
// ZipFile, which goes by the central directory, so that ours is checked.
//   ZipPeer OUT FILE...          names ending in .txt are stored, the rest
//                                deflated; the first entry gets a comment,
//                                the archive one too
//   ZipPeer --extract ZIP FOLDER
// The source is plain ASCII so that javac reads it the same under any locale.
public final class ZipPeer {
    public static void main(String[] args) throws IOException {
        if (args[0].equals("--extract")) {
            extract(args[1], Path.of(args[2]));
            return;
        }
        try (ZipOutputStream zip =
                new ZipOutputStream(new BufferedOutputStream(new FileOutputStream(args[0])))) {
            zip.setComment("made by java");
            for (int i = 1; i < args.length; ++i) {
                byte[] data = Files.readAllBytes(Path.of(args[i]));
                ZipEntry entry = new ZipEntry(args[i]);
                if (args[i].endsWith(".txt")) {
                    // Stored entries need their sizes and CRC-32 up front.
                    CRC32 crc = new CRC32();
                    crc.update(data);
                    entry.setMethod(ZipEntry.STORED);
                    entry.setSize(data.length);
                    entry.setCompressedSize(data.length);
                    entry.setCrc(crc.getValue());
                }
                if (i == 1) entry.setComment("first");
                zip.putNextEntry(entry);
                zip.write(data);
                zip.closeEntry();
            }
        }
    }

    private static void extract(String zipFile, Path folder) throws IOException {
        try (ZipFile zip = new ZipFile(zipFile)) {
            for (Enumeration<? extends ZipEntry> e = zip.entries(); e.hasMoreElements();) {
                ZipEntry entry = e.nextElement();
                Path target = folder.resolve(entry.getName());
                if (entry.isDirectory()) {
                    Files.createDirectories(target);
                    continue;
                }
                Files.createDirectories(target.getParent());
                try (InputStream in = zip.getInputStream(entry)) {
                    Files.copy(in, target);
                }
            }
        }
    }
}
