import com.sun.jna.Library;
import com.sun.jna.Native;
import com.sun.jna.Pointer;
import com.sun.jna.ptr.PointerByReference;
import java.io.ByteArrayInputStream;
import java.io.IOException;
import java.math.BigDecimal;
import java.math.RoundingMode;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.HashMap;
import java.util.Map;
import javax.xml.parsers.DocumentBuilderFactory;
import javax.xml.parsers.ParserConfigurationException;
import org.w3c.dom.Element;
import org.w3c.dom.NodeList;
import org.xml.sax.SAXException;

/** Runs a sale through the engine of a store and prints what is to pay for it: java Basket STORE SALE. */
public final class Basket {
  private static final int NO_TIME_LIMIT = 0;
  private static final int FIVE_SECONDS = 5000;

  /** The calls of qncorvane/host.h that are used here. */
  private interface Host extends Library {
    int qnc_open(String folder, PointerByReference engine, PointerByReference error);

    int qnc_close(Pointer engine, PointerByReference error);

    int qnc_load_rules(
        Pointer engine, String folder, int flags, int limitMs, PointerByReference report, PointerByReference error);

    int qnc_calculate(
        Pointer engine, String key, String mode, String xml, int flags, int limitMs, PointerByReference result,
        PointerByReference error);

    void qnc_free(Pointer text);
  }

  /** A call that was refused, with the library's own text. */
  private static final class RefusedException extends Exception {
    private static final long serialVersionUID = 1L;

    RefusedException(int code, String text) {
      super(text + " (code " + code + ")");
    }
  }

  // The name that the package libqncorvane1 brings; the one without a number comes with the headers alone.
  private static final Host HOST =
      Native.load("libqncorvane-host.so.1", Host.class, Map.of(Library.OPTION_STRING_ENCODING, "UTF-8"));

  private Basket() {}

  /** A text of the library's, which gets it back. */
  private static String take(PointerByReference text) {
    Pointer pointer = text.getValue();
    if (pointer == null) return "";
    try {
      return pointer.getString(0, "UTF-8");
    } finally {
      HOST.qnc_free(pointer);
    }
  }

  private static void check(int code, PointerByReference error) throws RefusedException {
    String text = take(error);
    if (code != 0) throw new RefusedException(code, text);
  }

  private static String calculate(String store, String sale) throws RefusedException {
    PointerByReference engine = new PointerByReference();
    PointerByReference error = new PointerByReference();
    check(HOST.qnc_open(store, engine, error), error);
    try {
      check(HOST.qnc_load_rules(engine.getValue(), null, 0, NO_TIME_LIMIT, null, error), error);
      PointerByReference result = new PointerByReference();
      check(HOST.qnc_calculate(engine.getValue(), "1", "All", sale, 0, FIVE_SECONDS, result, error), error);
      return take(result);
    } finally {
      HOST.qnc_close(engine.getValue(), null);
    }
  }

  /** An amount with its two decimals. */
  private static String text(BigDecimal amount) {
    return amount.setScale(2, RoundingMode.HALF_UP).toPlainString();
  }

  /** The rows of a group, in the text's order. */
  private static Element[] rows(String xml, String group) throws IOException, SAXException, ParserConfigurationException {
    Element root =
        DocumentBuilderFactory.newInstance()
            .newDocumentBuilder()
            .parse(new ByteArrayInputStream(xml.getBytes(StandardCharsets.UTF_8)))
            .getDocumentElement();
    NodeList found = ((Element) root.getElementsByTagName(group).item(0)).getElementsByTagName("*");
    Element[] rows = new Element[found.getLength()];
    for (int at = 0; at < rows.length; at++) rows[at] = (Element) found.item(at);
    return rows;
  }

  /** A line costs the amount that was sent, less its discounts: the rows with its number as their "RowID". */
  private static void print(String sale, String result) throws IOException, SAXException, ParserConfigurationException {
    Map<String, BigDecimal> discounts = new HashMap<>();
    for (Element row : rows(result, "ProResult")) {
      discounts.merge(row.getAttribute("RowID"), new BigDecimal(row.getAttribute("DisMoney")), BigDecimal::add);
    }
    BigDecimal toPay = BigDecimal.ZERO;
    for (Element line : rows(sale, "Plu")) {
      BigDecimal sent = new BigDecimal(line.getAttribute("Total"));
      BigDecimal discount = discounts.getOrDefault(line.getAttribute("SerialNo"), BigDecimal.ZERO);
      toPay = toPay.add(sent).subtract(discount);
      System.out.printf(
          "%s %s - %s = %s%n", line.getAttribute("PluCode"), text(sent), text(discount), text(sent.subtract(discount)));
    }
    System.out.println("To pay " + text(toPay));
  }

  public static void main(String[] arguments) throws Exception {
    if (arguments.length != 2) {
      System.err.println("Usage: java Basket STORE SALE");
      System.exit(2);
    }
    try {
      String sale = Files.readString(Path.of(arguments[1]));
      print(sale, calculate(arguments[0], sale));
    } catch (RefusedException refused) {
      System.err.println("Basket: " + refused.getMessage());
      System.exit(1);
    } catch (IOException unreadable) {
      System.err.println("Basket: the sale can't be read: " + unreadable);
      System.exit(1);
    }
  }
}
